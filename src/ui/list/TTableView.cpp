#include "ui/list/TTableView.h"

#include <QAccessible>
#include <QAction>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "ui/list/HTableHeaderView.h"
#include "ui/list/ItemListModel.h"
#include "ui/list/ItemRowDelegate.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

static_assert(static_cast<int>(ItemListModel::nameColumn) == CheckTableView::textColumn);

constexpr int sizeColumnWidth = 120;
// With two columns of numbers.
constexpr int countColumnWidth = 66;
constexpr int narrowSizeColumnWidth = 94;

}  // namespace

TTableView::TTableView(QWidget* parent) : CheckTableView(parent) {
    setItemDelegate(new ItemRowDelegate(this));
    setHorizontalHeader(new HTableHeaderView(this));
}

void TTableView::setModel(QAbstractItemModel* model) {
    CheckTableView::setModel(model);
    const auto* header = static_cast<const HTableHeaderView*>(horizontalHeader());
    const auto fixNumbers = [this, header](int column, int width) {
        fixWidth(column, std::max(look::scaled(width), header->cell(column).wholeWidth(header->font())));
    };
    const bool counts = model->columnCount() > ItemListModel::countColumn;
    fixNumbers(ItemListModel::sizeColumn, counts ? narrowSizeColumnWidth : sizeColumnWidth);
    if (counts) {
        fixNumbers(ItemListModel::countColumn, countColumnWidth);
        horizontalHeader()->moveSection(ItemListModel::countColumn, ItemListModel::sizeColumn);
    }
    addSortActions();
    connect(static_cast<ItemListModel*>(model), &ItemListModel::rowsReordered, this, &TTableView::announceReorder,
            Qt::QueuedConnection);
}

void TTableView::addSortActions() {
    auto* header = horizontalHeader();
    int digit = 0;
    for (int place = 0; place < header->count(); ++place) {
        const int column = header->logicalIndex(place);
        if (column == ItemListModel::iconColumn) {
            continue;
        }
        auto* sort = new QAction(model()->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString(), this);
        sort->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + digit++)));
        sort->setShortcutContext(Qt::WidgetShortcut);
        sort->setCheckable(true);
        connect(sort, &QAction::triggered, header, [header, column] { Q_EMIT header->sectionClicked(column); });
        addAction(sort);
        sortActions_.insert(column, sort);
    }
    connect(header, &QHeaderView::sortIndicatorChanged, this, &TTableView::showSorting);
    showSorting();
}

// The "Sort By" menu shows the checked action.
void TTableView::showSorting() {
    for (auto sort = sortActions_.cbegin(); sort != sortActions_.cend(); ++sort) {
        (*sort)->setChecked(sort.key() == horizontalHeader()->sortIndicatorSection());
    }
}

void TTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete && event->isAutoRepeat()) {
        event->accept();  // a key that is held must not take one row after the other
    } else if (event->key() == Qt::Key_Delete && currentIndex().isValid()) {
        selectCurrentRow();
        Q_EMIT event->modifiers().testFlag(Qt::ControlModifier) ? trashRequested() : removeRequested();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        requestMenuOfCurrentRow();  // the standard replacement of the menu key
    } else {
        CheckTableView::keyPressEvent(event);
    }
}

// The menu acts on the selected row, so a click selects its row first.
void TTableView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        requestMenuOfCurrentRow();
        return;
    }
    const QModelIndex index = indexAt(event->pos());
    if (index.isValid()) {
        setCurrentIndex(index);
        Q_EMIT menuRequested(event->globalPos());
    }
}

// The current row of the keyboard need not be the selected one.
void TTableView::selectCurrentRow() {
    selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void TTableView::requestMenuOfCurrentRow() {
    const QModelIndex index = currentIndex();
    if (!index.isValid()) {
        return;
    }
    selectCurrentRow();
    scrollTo(index);
    const QRect name = visualRect(index.siblingAtColumn(ItemListModel::nameColumn));
    Q_EMIT menuRequested(viewport()->mapToGlobal(isRightToLeft() ? name.bottomRight() : name.bottomLeft()));
}

void TTableView::announceReorder() {
    QAccessibleTableModelChangeEvent reordered(this, QAccessibleTableModelChangeEvent::ModelReset);
    QAccessible::updateAccessibility(&reordered);
}

}  // namespace brimvault::ui
