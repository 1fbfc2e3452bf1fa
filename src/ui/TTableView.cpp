#include "ui/TTableView.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <utility>

#include "ui/AccessibleItemView.h"
#include "ui/CheckToggle.h"
#include "ui/HTableHeaderView.h"
#include "ui/ItemListModel.h"
#include "ui/ItemRowDelegate.h"
#include "ui/Look.h"

namespace brimvault::ui {

namespace {

constexpr int checkColumnWidth = 38;
constexpr int iconColumnWidth = 38;
constexpr int sizeColumnWidth = 120;

// A quiet handle on the ground of the list, without arrow buttons.
const QString scrollBarLook = QStringLiteral(
    "QScrollBar:vertical { background: #ffffff; width: 12px; border: none; margin: 0; }"
    "QScrollBar::handle:vertical { background: #aebbcb; border-radius: 4px; min-height: 32px; margin: 2px; }"
    "QScrollBar::handle:vertical:hover { background: #7a8798; }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
    "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }");

}  // namespace

TTableView::TTableView(QWidget* parent) : QTableView(parent) {
    setItemDelegate(new ItemRowDelegate(this));
    setHorizontalHeader(new HTableHeaderView(this));
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(0);
    verticalHeader()->setDefaultSectionSize(look::scaled(look::itemRowHeight));
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setStyleSheet(scrollBarLook);
    verticalScrollBar()->setSingleStep(look::scaled(look::itemRowHeight));
}

void TTableView::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
    horizontalHeader()->setSectionResizeMode(ItemListModel::nameColumn, QHeaderView::Stretch);
    const auto fix = [this](int column, int width) {
        horizontalHeader()->setSectionResizeMode(column, QHeaderView::Fixed);
        setColumnWidth(column, width);
    };
    fix(ItemListModel::checkColumn, checkColumnWidth);
    fix(ItemListModel::iconColumn, iconColumnWidth);
    fix(ItemListModel::sizeColumn, look::scaled(sizeColumnWidth));
    connect(model, &QAbstractItemModel::rowsInserted, this, &TTableView::keepCurrentRow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &TTableView::keepCurrentRow);
    connect(static_cast<ItemListModel*>(model), &ItemListModel::rowsReordered, this, &TTableView::tellRowsReordered,
            Qt::QueuedConnection);
    announceCheckChanges(this, ItemListModel::checkColumn);
}

void TTableView::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() && index.column() == ItemListModel::checkColumn) {
        pressedCheck_ = index;
        viewport()->update();
    }
}

void TTableView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const QModelIndex pressed = std::exchange(pressedCheck_, QPersistentModelIndex());
    if (pressed.isValid()) {
        viewport()->update();
        if (indexAt(event->position().toPoint()) == pressed) {
            toggleCheck(this, pressed);
        }
    }
}

void TTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        toggleCheck(this, currentIndex().siblingAtColumn(ItemListModel::checkColumn));
    } else if (event->key() == Qt::Key_Delete && currentIndex().isValid()) {
        selectCurrentRow();
        Q_EMIT removeRequested();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        requestMenuOfCurrentRow();  // the menu key of keyboards without one
    } else {
        QTableView::keyPressEvent(event);
    }
}

QModelIndex TTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action == MoveHome || action == MoveEnd) {
        return model()->index(action == MoveHome ? 0 : model()->rowCount() - 1, currentIndex().column());
    }
    return QTableView::moveCursor(action, modifiers);
}

// What the menu offers is done to the selected row: a click selects its row first.
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

// What a key does is done to the row that the keyboard is at, which need not have been selected before.
void TTableView::selectCurrentRow() {
    selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

// Until the user has chosen a row, the keyboard begins at the first, whatever came before it since.
void TTableView::focusInEvent(QFocusEvent* event) {
    if (selectionModel()->selectedRows().isEmpty() && event->reason() != Qt::MouseFocusReason) {
        selectionModel()->setCurrentIndex(model()->index(0, ItemListModel::nameColumn), QItemSelectionModel::NoUpdate);
    }
    QTableView::focusInEvent(event);
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

void TTableView::keepCurrentRow() {
    if (!currentIndex().isValid() && model()->rowCount() > 0) {
        selectionModel()->setCurrentIndex(model()->index(0, ItemListModel::nameColumn), QItemSelectionModel::NoUpdate);
    }
}

void TTableView::tellRowsReordered() {
    QAccessibleTableModelChangeEvent reordered(this, QAccessibleTableModelChangeEvent::ModelReset);
    QAccessible::updateAccessibility(&reordered);
}

}  // namespace brimvault::ui
