#include "ui/AccessibleItemView.h"

#include <QAccessible>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>

#include "ui/AccessibleButton.h"
#include "ui/AccessibleCell.h"
#include "ui/AccessibleHeaderCell.h"
#include "ui/AccessibleProgress.h"
#include "ui/AccessibleSheet.h"
#include "ui/AlertWindow.h"
#include "ui/CheckTableView.h"
#include "ui/NotCleanedListView.h"
#include "ui/SectionsTableView.h"

namespace brimvault::ui {

namespace {

// Buttons of Qt's own dialogs are presented by Qt.
bool isOurs(const QString& className) { return className.startsWith(QLatin1String("brimvault::")); }

QAccessibleInterface* present(const QString& className, QObject* object) {
    if (qobject_cast<CheckTableView*>(object) != nullptr || qobject_cast<SectionsTableView*>(object) != nullptr ||
        qobject_cast<NotCleanedListView*>(object) != nullptr) {
        return new AccessibleItemView(static_cast<QAbstractItemView*>(object));
    }
    if (auto* sheet = qobject_cast<Sheet*>(object)) {
        return new AccessibleSheet(sheet);
    }
    if (auto* alert = qobject_cast<AlertWindow*>(object)) {
        return new QAccessibleWidget(alert, QAccessible::AlertMessage);
    }
    if (auto* indicator = qobject_cast<ProgressIndicator*>(object)) {
        return new AccessibleProgress(indicator);
    }
    if (auto* button = qobject_cast<QAbstractButton*>(object); button != nullptr && isOurs(className)) {
        return new AccessibleButton(button);
    }
    return nullptr;
}

bool hasHeaders(const QAbstractItemView* view) { return qobject_cast<const QTableView*>(view) != nullptr; }

// Null where no client listens.
AccessibleItemView* listenedTo(QAbstractItemView* view) {
    return QAccessible::isActive() ? dynamic_cast<AccessibleItemView*>(QAccessible::queryAccessibleInterface(view))
                                   : nullptr;
}

void announceCheck(AccessibleItemView& list, int row, int column) {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(list.cellAt(row, column), changed);
    QAccessible::updateAccessibility(&event);
}

void announceRows(QAbstractItemView* view, int firstRow, int lastRow, int column) {
    auto* list = listenedTo(view);
    if (list == nullptr) {
        return;
    }
    const QRect shown = view->viewport()->rect();
    const QModelIndex bottom = view->indexAt(shown.bottomLeft());  // none below a short list
    const int last = bottom.isValid() ? std::min(lastRow, bottom.row()) : lastRow;
    for (int row = std::max(firstRow, view->indexAt(shown.topLeft()).row()); row <= last; ++row) {
        announceCheck(*list, row, column);
        if (list->headers() != 0) {
            announceCheck(*list, row, CheckTableView::textColumn);
        }
    }
}

}  // namespace

void AccessibleItemView::install() { QAccessible::installFactory(present); }

AccessibleItemView::AccessibleItemView(QAbstractItemView* view)
    : QAccessibleWidget(view, hasHeaders(view) ? QAccessible::Table : QAccessible::List),
      view_(view),
      headers_(hasHeaders(view) ? 1 : 0) {}

AccessibleItemView::~AccessibleItemView() {
    for (const QAccessible::Id id : std::as_const(children_)) {
        QAccessible::deleteAccessibleInterface(id);
    }
}

QAccessible::State AccessibleItemView::state() const {
    auto state = QAccessibleWidget::state();
    state.disabled = !isUsable();
    state.multiSelectable = view_->selectionMode() != QAbstractItemView::SingleSelection;
    return state;
}

void* AccessibleItemView::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableInterface) {
        return static_cast<QAccessibleTableInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

int AccessibleItemView::childIndex(int row, int column) const {
    return (row + headers_) * (columnCount() + headers_) + column + headers_;
}

int AccessibleItemView::childCount() const { return (rowCount() + headers_) * (columnCount() + headers_); }

QAccessibleInterface* AccessibleItemView::child(int index) const {
    if (index < 0 || index >= childCount()) {
        return nullptr;
    }
    auto known = children_.find(index);
    if (known == children_.end()) {
        const int columns = columnCount() + headers_;
        auto* made = makeChild(index / columns - headers_, index % columns - headers_);
        known = children_.insert(index, QAccessible::registerAccessibleInterface(made));
    }
    return QAccessible::accessibleInterface(*known);
}

QAccessibleInterface* AccessibleItemView::makeChild(int row, int column) const {
    if (row < 0 || column < 0) {
        return new AccessibleHeaderCell(this, row, column);
    }
    return new AccessibleCell(this, row, column);
}

int AccessibleItemView::indexOfChild(const QAccessibleInterface* child) const {
    const auto* place = dynamic_cast<const AccessiblePlace*>(child);
    return place == nullptr || place->parent() != this ? -1 : childIndex(place->row(), place->column());
}

QAccessibleInterface* AccessibleItemView::childAt(int x, int y) const {
    const QModelIndex index = view_->indexAt(view_->viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface* AccessibleItemView::focusChild() const {
    const QModelIndex current = view_->currentIndex();
    return view_->hasFocus() && current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
}

QAccessibleInterface* AccessibleItemView::cellAt(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) {
        return nullptr;
    }
    return child(childIndex(row, column));
}

QList<int> AccessibleItemView::selectedRows() const {
    QList<int> rows;
    for (const QModelIndex& index : view_->selectionModel()->selectedRows()) {
        rows.append(index.row());
    }
    return rows;
}

QList<QAccessibleInterface*> AccessibleItemView::selectedCells() const {
    QList<QAccessibleInterface*> cells;
    for (const int row : selectedRows()) {
        for (int column = 0; column < columnCount(); ++column) {
            cells.append(cellAt(row, column));
        }
    }
    return cells;
}

QString AccessibleItemView::columnDescription(int column) const {
    return view_->model()->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString();
}

bool AccessibleItemView::isRowSelected(int row) const { return view_->selectionModel()->isRowSelected(row); }

bool AccessibleItemView::selectRow(int row) {
    const QModelIndex index =
        view_->model()->index(row, view_->currentIndex().isValid() ? view_->currentIndex().column() : 0);
    if (!index.flags().testFlag(Qt::ItemIsSelectable)) {
        return false;
    }
    if (state().multiSelectable) {
        view_->selectionModel()->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    } else {
        view_->setCurrentIndex(index);
    }
    return true;
}

bool AccessibleItemView::unselectRow(int row) {
    const QModelIndex index = view_->model()->index(row, 0);
    if (index.isValid()) {
        view_->selectionModel()->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    }
    return index.isValid();
}

// A place stays a place whatever stands there; only places that are no more go.
void AccessibleItemView::modelChange(QAccessibleTableModelChangeEvent* /*event*/) {
    const int count = childCount();
    children_.removeIf([count](QHash<int, QAccessible::Id>::iterator known) {
        const bool gone = known.key() >= count;
        if (gone) {
            QAccessible::deleteAccessibleInterface(known.value());
        }
        return gone;
    });
}

void announceCheckChanges(QAbstractItemView* view, int column) {
    QObject::connect(view->model(), &QAbstractItemModel::dataChanged, view,
                     [view, column](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                         if (roles.contains(Qt::CheckStateRole)) {
                             announceRows(view, first.row(), last.row(), column);
                         }
                     });
}

void announceHeaders(QAbstractItemView* view) {
    auto* list = listenedTo(view);
    for (int column = 0; list != nullptr && column < list->columnCount(); ++column) {
        QAccessibleEvent event(list->child(list->childIndex(-1, column)), QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

void announceDescription(QAbstractItemView* view, int row) {
    if (auto* list = listenedTo(view)) {
        QAccessibleEvent event(list->cellAt(row, 0), QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

}  // namespace brimvault::ui
