#include "ui/ItemListController.h"

#include <QHeaderView>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QSet>
#include <algorithm>

#include "engine/Notifications.h"
#include "platform/DisplayText.h"

namespace brimvault::ui {

namespace {

// As roomy as the rest of the window.
const QString menuLook = QStringLiteral(
    "QMenu { background: #ffffff; border: 1px solid #d5dde8; padding: 5px; }"
    "QMenu::item { padding: 6px 32px 6px 14px; border-radius: 6px; color: #1b2430; }"
    "QMenu::item:selected { background: #2a6ae4; color: #ffffff; }"
    "QMenu::item:disabled { background: transparent; color: #6b7889; }"
    "QMenu::separator { height: 1px; background: #dde4ec; margin: 5px 8px; }");

const engine::FFItem& file(const engine::CleanableItem& item) { return static_cast<const engine::FFItem&>(item); }

}  // namespace

ItemListController::ItemListController(engine::Section section, const Surroundings& surroundings)
    : section_(section),
      pDS_(surroundings.pDS),
      pCheckListener_(surroundings.pCheckListener),
      dataSource_(surroundings.dataSource),
      util_(surroundings.util) {}

ItemListController::~ItemListController() = default;

void ItemListController::awake(const QString& accessibleName) {
    model_ = new ItemListModel(texts(), this);
    ptableView_ = new TTableView;
    ptableView_->setAccessibleName(accessibleName);
    ptableView_->setModel(model_);
    ptableView_->horizontalHeader()->setSortIndicator(ItemListModel::nameColumn, Qt::AscendingOrder);
    connect(model_, &ItemListModel::checkRequested, this, &ItemListController::setItemChecked);
    connect(ptableView_->horizontalHeader(), &QHeaderView::sectionClicked, this,
            &ItemListController::didClickTableColumn);
    // The second of two quick clicks counts as one too.
    connect(ptableView_->horizontalHeader(), &QHeaderView::sectionDoubleClicked, this,
            &ItemListController::didClickTableColumn);
    connect(ptableView_, &TTableView::menuRequested, this, &ItemListController::showMenu);
    connect(ptableView_, &TTableView::removeRequested, this, &ItemListController::onClickedRemove);
    const auto words = engine::vocabulary(section_);
    observe(words.interfaceFinished);
    observe(words.interfaceProgress);
    updateTableKeepSelection();
}

ItemListModel::Texts ItemListController::texts() const {
    return {[this](const engine::CleanableItem& item) { return nameOf(file(item)); },
            [this](const engine::CleanableItem& item) { return platform::displayText(fullPathOf(file(item))); },
            [](const engine::CleanableItem& item) { return file(item).getDisplayIcon(); }};
}

// The twins are posted on the main thread, so the list refreshes before they return.
void ItemListController::observe(const QString& name) {
    observations_.push_back(engine::NotificationCenter::defaultCenter().addObserver(
        name, [this](const engine::Notification&) { updateTableKeepSelection(); }));
}

void ItemListController::updateTableKeepSelection() {
    const auto selected = getSelectedItem();
    const QModelIndex current = ptableView_->currentIndex();
    const auto currentItem = current.isValid() ? model_->item(current.row()) : nullptr;
    const int scrolled = ptableView_->verticalScrollBar()->value();
    QList<ItemListModel::Item> shown;
    for (const auto& item : pDS_.itemsOf(section_)) {
        if (item->ppnSize() != 0) {  // what is empty frees nothing
            shown.append(item);
        }
    }
    const bool currentGoes = currentItem != nullptr && !shown.contains(currentItem);
    const int place = currentGoes ? rowsThatStay(shown, current.row()) : 0;
    model_->setItems(shown);
    if (currentGoes && hasItems()) {
        replaceCurrent(place, selected != nullptr);
    }
    ptableView_->verticalScrollBar()->setValue(scrolled);
    Q_EMIT tableUpdated();
}

// How many of the rows above one stay: the place of what follows it.
int ItemListController::rowsThatStay(const QList<ItemListModel::Item>& items, int above) const {
    const QSet<ItemListModel::Item> staying(items.cbegin(), items.cend());
    int count = 0;
    for (int row = 0; row < above; ++row) {
        count += staying.contains(model_->item(row)) ? 1 : 0;
    }
    return count;
}

// Rows take the selection with them. Only where the current item is gone, the one that now stands in its place follows
// it, selected if that was.
void ItemListController::replaceCurrent(int row, bool selected) {
    const auto next = model_->index(std::min(row, model_->rowCount() - 1), ItemListModel::nameColumn);
    ptableView_->selectionModel()->setCurrentIndex(
        next, selected ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows : QItemSelectionModel::Clear);
}

std::shared_ptr<engine::FFItem> ItemListController::getSelectedItem() const {
    const auto rows = ptableView_->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        return nullptr;
    }
    return std::static_pointer_cast<engine::FFItem>(model_->item(rows.first().row()));
}

int ItemListController::getcheckstate() const {
    bool checked = false;
    bool unchecked = false;
    for (const auto& item : model_->items()) {
        checked = checked || item->ppbChecked();
        unchecked = unchecked || (!item->ppbChecked() && item->ppbDeletable());
        if (checked && unchecked) {
            return -1;
        }
    }
    return checked ? 1 : 0;
}

void ItemListController::selectAllItems(int state) {
    for (const auto& item : model_->items()) {
        item->setPpbChecked(state != 0 && item->ppbDeletable());
    }
    model_->checksChanged(0, model_->rowCount() - 1);
    updateTableKeepSelection();
}

quint64 ItemListController::getSize2CleanMyItems() const {
    quint64 size = 0;
    engine::DataMan::getsizeAndSelSize(pDS_.itemsOf(section_), &size, nullptr);
    return size;
}

void ItemListController::setItemChecked(int row, bool checked) {
    model_->item(row)->setPpbChecked(checked);
    model_->checksChanged(row, row);
    updateTableKeepSelection();
    pCheckListener_.setSectionChecked(section_, checked);
}

void ItemListController::didClickTableColumn(int column) {
    auto* header = ptableView_->horizontalHeader();
    if (column == ItemListModel::iconColumn) {
        return;
    }
    // A first click shows names from A, what is ticked and what is large from the top.
    auto order = column == ItemListModel::nameColumn ? Qt::AscendingOrder : Qt::DescendingOrder;
    if (column == header->sortIndicatorSection()) {
        order = header->sortIndicatorOrder() == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    }
    header->setSortIndicator(column, order);
    model_->sort(column, order);
}

void ItemListController::showMenu(const QPoint& globalPosition) {
    auto* menu = new QMenu(ptableView_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setStyleSheet(menuLook);
    const bool selected = hasSelectedItem();
    menu->addAction(tr("Show in File Manager"), this, &ItemListController::onClickedRevealInFinder)
        ->setEnabled(selected);
    menu->addAction(tr("Show Information"), this, &ItemListController::onClickedGetInfo)->setEnabled(selected);
    menu->addSeparator();
    menu->addAction(tr("Remove..."), this, &ItemListController::onClickedRemove)->setEnabled(isRemoveEnabled());
    menu->popup(globalPosition);
}

void ItemListController::onClickedRevealInFinder() {
    if (const auto item = getSelectedItem()) {
        util_.doRevealInFinder(getPathByItem(*item));
    }
}

void ItemListController::onClickedGetInfo() {
    if (const auto item = getSelectedItem()) {
        util_.doGetInformation(getPathByItem(*item));
    }
}

bool ItemListController::isRemoveEnabled() const {
    return hasSelectedItem() && !dataSource_.sectionControllerIsScanOrRemoveProcessPerforming() &&
           !dataSource_.isScanReturning() && !dataSource_.isQuestionOpen();
}

void ItemListController::onClickedRemove() {
    if (!isRemoveEnabled()) {
        return;
    }
    const auto item = getSelectedItem();
    const auto path = getPathByItem(*item);
    if (!path.is_absolute()) {
        util_.alertFileNotExists(path);  // the section's folder is gone
        return;
    }
    const auto going = engine::ItemArray{item} + itemsIn(path);
    {
        const ApplicationController::OpenQuestion question(dataSource_);
        if (!util_.isRemovalConfirmed(path, going.size() - 1)) {
            return;
        }
    }
    if (!isRemoveEnabled() || model_->rowOf(item.get()) < 0) {
        return;  // while the question was open, the window went on
    }
    dataSource_.setPbRemoving(true);
    util_.doRemoveFile(path, [list = QPointer(this), going](bool success) {
        if (list) {
            list->removeFinished(going, success);
        }
    });
}

// What is listed singly and lies in a folder that is listed as well. Scans spell paths in one way, so comparing bytes
// is enough, and quick enough for the longest list.
engine::ItemArray ItemListController::itemsIn(const std::filesystem::path& folder) const {
    engine::ItemArray inside;
    const auto beginning = folder.native() + "/";
    for (const auto& item : model_->items()) {
        if (file(*item).pfpath().native().starts_with(beginning)) {
            inside.append(std::static_pointer_cast<engine::FFItem>(item));
        }
    }
    return inside;
}

void ItemListController::removeFinished(const engine::ItemArray& items, bool success) {
    dataSource_.setPbRemoving(false);
    if (success) {
        const auto words = engine::vocabulary(section_);
        engine::NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items}});
    }
}

void ItemListController::updateCleaningState(bool cleaning) {
    model_->setEnabled(!cleaning);
    if (ptableView_->isVisible()) {
        updateTableKeepSelection();
    }
}

}  // namespace brimvault::ui
