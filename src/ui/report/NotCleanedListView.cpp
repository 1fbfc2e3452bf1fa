#include "ui/report/NotCleanedListView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>
#include <numeric>

#include "ui/controls/PopUpMenu.h"
#include "ui/look/Look.h"
#include "ui/look/StyleSheets.h"

namespace brimvault::ui {

namespace {

// The view lays out all wrapped rows when it opens. These limits keep that within a few milliseconds.
constexpr int maxWrappedRows = 500;
constexpr qsizetype maxWrappedCharacters = 10'000;

bool isCheapToWrap(const QAbstractItemModel& rows) {
    qsizetype characters = 0;
    for (int row = 0; row < rows.rowCount() && row <= maxWrappedRows && characters <= maxWrappedCharacters; ++row) {
        characters += rows.index(row, 0).data().toString().size();
    }
    return rows.rowCount() <= maxWrappedRows && characters <= maxWrappedCharacters;
}

}  // namespace

NotCleanedListView::NotCleanedListView(QWidget* parent) : QListView(parent) {
    setAccessibleName(tr("Items that were not removed"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setResizeMode(QListView::Adjust);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setStyleSheet(styleSheets::scrollBar());
    verticalScrollBar()->setSingleStep(look::scaled(look::itemRowHeight));
}

void NotCleanedListView::reset() {
    setUniformItemSizes(model() != nullptr && !isCheapToWrap(*model()));
    QListView::reset();
}

// Scrolling to the first message of a section shows its title as well.
void NotCleanedListView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const QModelIndex above = index.siblingAtRow(index.row() - 1);
    if (hint == EnsureVisible && isTitle(above)) {
        QListView::scrollTo(above, hint);
    }
    QListView::scrollTo(index, hint);
}

QModelIndex NotCleanedListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const QModelIndex next = QListView::moveCursor(action, modifiers);
    return isTitle(next) ? next.siblingAtRow(next.row() + 1) : next;
}

QList<int> NotCleanedListView::selectedRows() const {
    QList<int> rows;
    for (const auto& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.append(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

QList<int> NotCleanedListView::allRows() const {
    QList<int> rows(model()->rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

void NotCleanedListView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        if (selectionModel()->hasSelection()) {
            Q_EMIT copyRequested(selectedRows());
        }
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        showMenuOfCurrentRow();  // the standard replacement of the menu key
    } else if (event->key() == Qt::Key_Escape) {
        event->ignore();  // the base class would search the rows for a text that begins so
    } else {
        QListView::keyPressEvent(event);
    }
}

void NotCleanedListView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        showMenuOfCurrentRow();
    } else {
        showMenu(event->globalPos());
    }
}

void NotCleanedListView::showMenuOfCurrentRow() {
    scrollTo(currentIndex());
    const QRect row = visualRect(currentIndex());
    showMenu(viewport()->mapToGlobal(isRightToLeft() ? row.bottomRight() : row.bottomLeft()));
}

void NotCleanedListView::showMenu(const QPoint& globalPosition) {
    auto* menu = makePopUpMenu(this);
    menu->addAction(tr("Copy"), this, [this] { Q_EMIT copyRequested(selectedRows()); })
        ->setEnabled(selectionModel()->hasSelection());
    menu->addAction(tr("Copy All"), this, [this] { Q_EMIT copyRequested(allRows()); });
    popUp(*menu, globalPosition);
}

}  // namespace brimvault::ui
