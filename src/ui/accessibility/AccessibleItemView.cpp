#include "ui/accessibility/AccessibleItemView.h"

#include <QAccessible>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "ui/accessibility/AccessibleCell.h"
#include "ui/accessibility/AccessibleHeaderCell.h"
#include "ui/controls/AccessibleControls.h"
#include "ui/controls/AlertWindow.h"
#include "ui/report/NotCleanedListView.h"
#include "ui/sections/SectionsTableView.h"
#include "ui/table/CheckTableView.h"

namespace brimvault::ui {

namespace {

// Buttons of Qt's own dialogs keep Qt's interface.
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

}  // namespace

void AccessibleItemView::install() { QAccessible::installFactory(present); }

AccessibleItemView::AccessibleItemView(QAbstractItemView* view)
    : AccessibleList(view, qobject_cast<QTableView*>(view) == nullptr ? 0 : 1),
      descriptionNews_([this] { announceDescriptions(); }) {
    followModel();
}

AccessibleItemView::~AccessibleItemView() {
    for (const QAccessible::Id id : std::as_const(children_)) {
        QAccessible::deleteAccessibleInterface(id);
    }
}

QAccessible::State AccessibleItemView::state() const {
    auto state = QAccessibleWidget::state();
    state.disabled = !isUsable();
    state.multiSelectable = view()->selectionMode() != QAbstractItemView::SingleSelection;
    return state;
}

void* AccessibleItemView::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableInterface) {
        return static_cast<QAccessibleTableInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

int AccessibleItemView::childCount() const { return (rowCount() + headers()) * (columnCount() + headers()); }

QAccessibleInterface* AccessibleItemView::child(int index) const {
    if (index < 0 || index >= childCount()) {
        return nullptr;
    }
    auto known = children_.find(index);
    if (known == children_.end()) {
        const int columns = columnCount() + headers();
        auto* made = makeChild(index / columns - headers(), index % columns - headers());
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
    const QModelIndex index = view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface* AccessibleItemView::focusChild() const {
    const QModelIndex current = view()->currentIndex();
    return view()->hasFocus() && current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
}

QAccessibleInterface* AccessibleItemView::cellAt(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) {
        return nullptr;
    }
    return child(childIndex(row, column));
}

QList<int> AccessibleItemView::selectedRows() const {
    QList<int> rows;
    for (const QModelIndex& index : view()->selectionModel()->selectedRows()) {
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
    return view()->model()->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString();
}

bool AccessibleItemView::isRowSelected(int row) const { return view()->selectionModel()->isRowSelected(row); }

bool AccessibleItemView::selectRow(int row) {
    const QModelIndex index =
        view()->model()->index(row, view()->currentIndex().isValid() ? view()->currentIndex().column() : 0);
    if (!index.flags().testFlag(Qt::ItemIsSelectable)) {
        return false;
    }
    if (state().multiSelectable) {
        view()->selectionModel()->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    } else {
        view()->setCurrentIndex(index);
    }
    return true;
}

bool AccessibleItemView::unselectRow(int row) {
    const QModelIndex index = view()->model()->index(row, 0);
    if (index.isValid()) {
        view()->selectionModel()->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    }
    return index.isValid();
}

// Called again at each model change, since a client may ask for the view before it has a model.
void AccessibleItemView::followModel() {
    auto* model = view()->model();
    if (model == nullptr || std::exchange(followed_, model) == model) {
        return;
    }
    QObject::connect(model, &QAbstractItemModel::dataChanged, &connections_,
                     [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                         announceDataChange(first, last, roles);
                     });
    if (const auto* table = qobject_cast<QTableView*>(view())) {
        QObject::connect(table->horizontalHeader(), &QHeaderView::sortIndicatorChanged, &connections_,
                         [this] { announceHeaders(); });
    }
}

// Cells stand for places, so only places beyond the end of the model are deleted. Also called when a model is set.
void AccessibleItemView::modelChange(QAccessibleTableModelChangeEvent* /*event*/) {
    followModel();
    const int count = childCount();
    children_.removeIf([count](QHash<int, QAccessible::Id>::iterator known) {
        const bool gone = known.key() >= count;
        if (gone) {
            QAccessible::deleteAccessibleInterface(known.value());
        }
        return gone;
    });
}

void AccessibleItemView::announceDataChange(const QModelIndex& first, const QModelIndex& last,
                                            const QList<int>& roles) {
    if (!QAccessible::isActive()) {
        return;
    }
    if (roles.contains(Qt::CheckStateRole)) {
        announceChecks(first.row(), last.row());
    }
    if (headers() == 0 && roles.contains(Qt::AccessibleDescriptionRole)) {
        for (int row = first.row(); row <= last.row(); ++row) {
            changedDescriptions_.insert(row);
        }
        descriptionNews_.changed();
    }
}

// The text cell of a table reports the check state as well.
void AccessibleItemView::announceChecks(int firstRow, int lastRow) const {
    const QRect shown = view()->viewport()->rect();
    const QModelIndex bottom = view()->indexAt(shown.bottomLeft());  // none below a short list
    const int last = bottom.isValid() ? std::min(lastRow, bottom.row()) : lastRow;
    for (int row = std::max(firstRow, view()->indexAt(shown.topLeft()).row()); row <= last; ++row) {
        announceCheck(row, CheckTableView::checkColumn);
        if (headers() != 0) {
            announceCheck(row, CheckTableView::textColumn);
        }
    }
}

void AccessibleItemView::announceCheck(int row, int column) const {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(cellAt(row, column), changed);
    QAccessible::updateAccessibility(&event);
}

void AccessibleItemView::announceDescriptions() {
    for (const int row : std::exchange(changedDescriptions_, {})) {
        if (auto* cell = cellAt(row, 0)) {
            QAccessibleEvent event(cell, QAccessible::DescriptionChanged);
            QAccessible::updateAccessibility(&event);
        }
    }
}

void AccessibleItemView::announceHeaders() const {
    for (int column = 0; QAccessible::isActive() && column < columnCount(); ++column) {
        QAccessibleEvent event(child(childIndex(-1, column)), QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

}  // namespace brimvault::ui
