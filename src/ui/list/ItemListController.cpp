#include "ui/list/ItemListController.h"

#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>

#include "engine/notification/Notifications.h"
#include "ui/controls/PopUpMenu.h"

namespace brimvault::ui {

ItemListController::ItemListController(engine::Section section, const Dependencies& dependencies)
    : section_(section), dependencies_(dependencies) {}

ItemListController::~ItemListController() = default;

void ItemListController::awake(const QString& accessibleName) {
    accessibleName_ = accessibleName;
    model_ = new ItemListModel(texts(), this);
    connect(model_, &ItemListModel::checkRequested, this, &ItemListController::setItemChecked);
    const auto words = engine::vocabulary(section_);
    observe(words.interfaceFinished);
    observe(words.interfaceProgress);
    observations_.push_back(engine::NotificationCenter::defaultCenter().addObserver(
        engine::notification::sharedSpaceInterfaceUpd,
        [this](const engine::Notification&) { model_->freesChanged(); }));
    updateTableKeepSelection();
}

void ItemListController::loadView() {
    ptableView_ = new TTableView;
    ptableView_->setAccessibleName(accessibleName_);
    ptableView_->setModel(model_);
    auto* header = ptableView_->horizontalHeader();
    header->setSortIndicator(model_->sortColumn(), model_->sortOrder());
    connect(header, &QHeaderView::sectionClicked, this, &ItemListController::didClickTableColumn);
    // The header reports the second click of a double click with this signal only.
    connect(header, &QHeaderView::sectionDoubleClicked, this, &ItemListController::didClickTableColumn);
    connect(ptableView_, &TTableView::menuRequested, this, &ItemListController::showMenu);
    viewDidLoad();
}

// These notifications are posted on the main thread, and the list is up to date when the post returns.
void ItemListController::observe(const QString& name) {
    observations_.push_back(engine::NotificationCenter::defaultCenter().addObserver(
        name, [this](const engine::Notification&) { updateTableKeepSelection(); }));
}

void ItemListController::updateTableKeepSelection() {
    if (ptableView_ == nullptr) {
        updateRows(0);
        return;
    }
    const bool selected = hasSelectedItem();
    const QModelIndex current = ptableView_->currentIndex();
    const auto currentItem = current.isValid() ? model_->item(current.row()) : nullptr;
    const int scrolled = ptableView_->verticalScrollBar()->value();
    const int place = updateRows(current.isValid() ? current.row() : 0);
    if (currentItem != nullptr && !model_->contains(currentItem.get()) && hasItems()) {
        replaceCurrent(place, selected);
    }
    ptableView_->verticalScrollBar()->setValue(scrolled);
    Q_EMIT tableUpdated();
}

// The selection moves with its row. Only if the current item is gone, the row that took its place becomes current, and
// selected if the old one was.
void ItemListController::replaceCurrent(int row, bool selected) {
    const auto next = model_->index(std::min(row, model_->rowCount() - 1), ItemListModel::nameColumn);
    ptableView_->selectionModel()->setCurrentIndex(
        next, selected ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows : QItemSelectionModel::Clear);
}

ItemListController::Item ItemListController::selectedItem() const {
    if (ptableView_ == nullptr) {
        return nullptr;
    }
    const auto rows = ptableView_->selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : model_->item(rows.first().row());
}

void ItemListController::selectAllItems(int state) {
    model_->setAllChecked(state != 0);
    dependencies_.pDS.settleMarks(section_);
    updateTableKeepSelection();
}

void ItemListController::setItemChecked(int row, bool checked) {
    const bool othersToo = dependencies_.pDS.setChecked(section_, *model_->item(row), checked);
    model_->checksChanged(othersToo ? 0 : row, othersToo ? model_->rowCount() - 1 : row);
    updateTableKeepSelection();
    dependencies_.pCheckListener.setSectionChecked(section_, checked);
}

// The first click on a column sorts names from A to Z, and ticked or large items first; each further click reverses the
// order. QHeaderView has already changed its indicator by its own rules, which is set right here.
void ItemListController::didClickTableColumn(int column) {
    if (column != ItemListModel::iconColumn) {
        const bool again = column == model_->sortColumn();
        const bool ascending = again ? model_->sortOrder() == Qt::DescendingOrder : column == ItemListModel::nameColumn;
        model_->sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
    ptableView_->horizontalHeader()->setSortIndicator(model_->sortColumn(), model_->sortOrder());
}

void ItemListController::showMenu(const QPoint& globalPosition) {
    auto* menu = makePopUpMenu(ptableView_);
    const bool selected = hasSelectedItem();
    menu->addAction(tr("Show in File Manager"), this, &ItemListController::onClickedRevealInFinder)
        ->setEnabled(selected);
    menu->addAction(tr("Show Information"), this, &ItemListController::onClickedGetInfo)->setEnabled(selected);
    addActions(*menu);
    menu->addSeparator();
    menu->addMenu(tr("Sort By"))->addActions(ptableView_->actions());
    popUp(*menu, globalPosition);
}

void ItemListController::onClickedRevealInFinder() {
    if (const auto item = selectedItem()) {
        dependencies_.util.doRevealInFinder(pathOf(*item));
    }
}

void ItemListController::onClickedGetInfo() {
    if (const auto item = selectedItem()) {
        const auto name = model_->index(model_->rowOf(item.get()), ItemListModel::nameColumn);
        const QString note = item->ppbDeletable() ? QString() : name.data(ItemListModel::noteRole).toString();
        dependencies_.util.doGetInformation(pathOf(*item), {note, item->ppnSize()});
    }
}

void ItemListController::updateCleaningState(bool cleaning) {
    model_->setEnabled(!cleaning);
    if (ptableView_ != nullptr && ptableView_->isVisible()) {
        updateTableKeepSelection();
    }
}

}  // namespace brimvault::ui
