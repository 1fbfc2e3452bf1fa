#include "ui/table/CheckTableView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "ui/look/Look.h"
#include "ui/look/StyleSheets.h"

namespace brimvault::ui {

namespace {

constexpr int checkColumnWidth = 38;
constexpr int iconColumnWidth = 38;

}  // namespace

CheckTableView::CheckTableView(QWidget* parent) : QTableView(parent) {
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
    verticalScrollBar()->setStyleSheet(styleSheets::scrollBar());
    verticalScrollBar()->setSingleStep(look::scaled(look::itemRowHeight));
}

void CheckTableView::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
    horizontalHeader()->setSectionResizeMode(textColumn, QHeaderView::Stretch);
    fixWidth(checkColumn, look::scaled(checkColumnWidth));
    fixWidth(iconColumn, look::scaled(iconColumnWidth));
    connect(model, &QAbstractItemModel::rowsInserted, this, &CheckTableView::keepCurrentRow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &CheckTableView::keepCurrentRow);
    keepCurrentRow();
}

void CheckTableView::fixWidth(int column, int width) {
    horizontalHeader()->setSectionResizeMode(column, QHeaderView::Fixed);
    setColumnWidth(column, width);
}

void CheckTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool check = event->button() == Qt::LeftButton && index.isValid() && index.column() == checkColumn;
    if (!check || checkSelects_) {
        QTableView::mousePressEvent(event);
    }
    if (check && index.flags().testFlag(Qt::ItemIsUserCheckable)) {
        press_.begin(index);
    }
}

void CheckTableView::mouseMoveEvent(QMouseEvent* event) {
    if (!press_.check().isValid() || checkSelects_) {
        QTableView::mouseMoveEvent(event);
    }
}

void CheckTableView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    press_.end([&](const QModelIndex& check) { return indexAt(event->position().toPoint()) == check; });
}

void CheckTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        toggleCheck(this, currentIndex().siblingAtColumn(checkColumn));
    } else if (event->key() == Qt::Key_Escape) {
        event->ignore();  // the base class would search the rows for a name that begins so
    } else {
        QTableView::keyPressEvent(event);
    }
}

// The keyboard moves by rows; an assistive client reads the whole row in its text cell.
QModelIndex CheckTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action == MoveHome || action == MoveEnd) {
        return model()->index(action == MoveHome ? 0 : model()->rowCount() - 1, textColumn);
    }
    const QModelIndex next = QTableView::moveCursor(action, modifiers);
    return next.siblingAtColumn(textColumn);
}

// Rows may have been inserted above the current one; until the user selects a row, the keyboard starts at the first.
void CheckTableView::focusInEvent(QFocusEvent* event) {
    if (selectionModel()->selectedRows().isEmpty() && event->reason() != Qt::MouseFocusReason) {
        selectionModel()->setCurrentIndex(model()->index(0, textColumn), QItemSelectionModel::NoUpdate);
    }
    QTableView::focusInEvent(event);
}

void CheckTableView::keepCurrentRow() {
    if (!currentIndex().isValid() && model()->rowCount() > 0) {
        selectionModel()->setCurrentIndex(model()->index(0, textColumn), QItemSelectionModel::NoUpdate);
    }
}

}  // namespace brimvault::ui
