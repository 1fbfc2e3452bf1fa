#include "ui/report/NotCleanedController.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTimer>
#include <chrono>

namespace brimvault::ui {

namespace {

constexpr std::chrono::milliseconds endDelay{100};

}  // namespace

NotCleanedController::~NotCleanedController() { delete pNotCleanedInfoPanel_.data(); }

void NotCleanedController::updateNotCleanedRusultsApps(const std::optional<engine::NotCleanedApplications>& apps,
                                                       const std::optional<engine::NotRemovedDictionary>& dwns,
                                                       const std::optional<engine::NotRemovedDictionary>& caches,
                                                       const std::optional<engine::NotRemovedDictionary>& trash,
                                                       const std::optional<engine::NotRemovedDictionary>& logs,
                                                       SheetCoordinator* appDelegate) {
    pAppDelegate_ = appDelegate;
    beginResetModel();
    rows_ = engine::NotCleanedRows(apps, dwns, caches, trash, logs);
    endResetModel();
    if (rows_.count() == 0) {
        if (!pNotCleanedInfoPanel_.isNull()) {
            doCloseNotCleanedPanel();  // its messages no longer hold
        }
        return;
    }
    if (pAppDelegate_ != nullptr) {
        pAppDelegate_->willModalSheetBegin(this);
    } else {
        showNotCleanedInfoPanel();
    }
}

void NotCleanedController::showNotCleanedInfoPanelModalFor(QWidget* window) {
    if (rows_.count() == 0) {
        return;
    }
    const bool shown = !pNotCleanedInfoPanel_.isNull();
    if (!shown) {
        makePanel(window);
    }
    pNotCleanedInfoPanel_->setNote(note());
    auto* list = pNotCleanedInfoPanel_->pNotCleanedTView();
    list->setCurrentIndex(index(1));  // the first message
    list->scrollTo(index(0));
    if (!shown) {
        pNotCleanedInfoPanel_->beginSheet(list);
    }
}

QString NotCleanedController::note() const {
    switch (cleanEnd_) {
        case CleanEnd::tookTheRest:
            return tr("Everything else was cleaned.");
        case CleanEnd::stopped:
            return tr("The clean was stopped, so other items may be left as well.");
        case CleanEnd::tookNothing:
            break;
    }
    return {};
}

void NotCleanedController::makePanel(QWidget* window) {
    pNotCleanedInfoPanel_ = new NotCleanedSheet(this, window);
    connect(pNotCleanedInfoPanel_, &Sheet::closeRequested, this, &NotCleanedController::doCloseNotCleanedPanel);
    connect(pNotCleanedInfoPanel_->pNotCleanedTView(), &NotCleanedListView::copyRequested, this,
            &NotCleanedController::copy);
}

void NotCleanedController::doCloseNotCleanedPanel() {
    if (auto* panel = pNotCleanedInfoPanel_.data()) {
        panel->endSheet();
        panel->deleteLater();  // this may be called by a signal of the panel
        pNotCleanedInfoPanel_.clear();
    }
    beginResetModel();
    rows_.removeMessages();
    endResetModel();
    if (pAppDelegate_ != nullptr) {
        QTimer::singleShot(endDelay, this,
                           [this, application = pAppDelegate_] { application->didModalSheetEnd(this); });
    }
}

void NotCleanedController::copy(const QList<int>& rows) const {
    QGuiApplication::clipboard()->setText(rows_.plainText(rows));
}

int NotCleanedController::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_.count(); }

QVariant NotCleanedController::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole) {
        return index.isValid() ? rows_.line(index.row()) : QVariant();
    }
    if (role == Qt::AccessibleDescriptionRole) {
        return rows_.titleOf(index.row());  // assistive clients read a message together with its section
    }
    return {};
}

Qt::ItemFlags NotCleanedController::flags(const QModelIndex& index) const {
    if (!index.isValid() || isGroupRow(index.row())) {
        return Qt::ItemNeverHasChildren;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

}  // namespace brimvault::ui
