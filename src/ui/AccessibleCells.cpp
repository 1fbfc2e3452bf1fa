#include "ui/AccessibleCells.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QTableView>

#include "ui/AccessibleItemView.h"

namespace brimvault::ui {

QAccessibleInterface* AccessiblePlace::parent() const { return QAccessible::queryAccessibleInterface(list_->view()); }

void* AccessiblePlace::interface_cast(QAccessible::InterfaceType type) {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
}

// --- Cells ------------------------------------------------------------------------------------------------------

QModelIndex AccessibleCell::index() const { return list()->view()->model()->index(row(), column()); }

void* AccessibleCell::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableCellInterface) {
        return static_cast<QAccessibleTableCellInterface*>(this);
    }
    return AccessiblePlace::interface_cast(type);
}

QString AccessibleCell::text(QAccessible::Text kind) const {
    if (kind == QAccessible::Description) {
        return index().data(Qt::AccessibleDescriptionRole).toString();
    }
    if (kind != QAccessible::Name) {
        return {};
    }
    const QVariant spoken = index().data(Qt::AccessibleTextRole);
    return spoken.isValid() ? spoken.toString() : index().data(Qt::DisplayRole).toString();
}

QRect AccessibleCell::rect() const {
    const auto* view = list()->view();
    return view->visualRect(index()).translated(view->viewport()->mapToGlobal(QPoint()));
}

QAccessible::Role AccessibleCell::role() const {
    return list()->headers() == 0 ? QAccessible::ListItem : QAccessible::Cell;
}

QAccessible::State AccessibleCell::state() const {
    QAccessible::State state;
    const QModelIndex place = index();
    if (!place.isValid()) {
        state.invalid = true;
        return state;
    }
    const auto* view = list()->view();
    state.selectable = true;
    state.focusable = true;
    state.selected = isSelected();
    state.focused = view->hasFocus() && view->currentIndex() == place;
    state.disabled = !view->isEnabled();
    state.invisible = !view->isVisible();
    state.offscreen = !view->viewport()->rect().intersects(view->visualRect(place));
    const QVariant check = place.data(Qt::CheckStateRole);
    state.checkable = check.isValid();
    state.checked = check.toInt() == Qt::Checked;
    return state;
}

bool AccessibleCell::isSelected() const { return list()->view()->selectionModel()->isSelected(index()); }

QList<QAccessibleInterface*> AccessibleCell::columnHeaderCells() const {
    if (list()->headers() == 0) {
        return {};
    }
    return {list()->child(list()->childIndex(-1, column()))};
}

QStringList AccessibleCell::actionNames() const {
    if (index().flags().testFlag(Qt::ItemIsUserCheckable)) {
        return {toggleAction(), setFocusAction()};
    }
    return {setFocusAction()};
}

void AccessibleCell::doAction(const QString& action) {
    auto* view = list()->view();
    const QModelIndex place = index();
    if (action == toggleAction() && place.flags().testFlag(Qt::ItemIsUserCheckable)) {
        const bool checked = place.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        view->model()->setData(place, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    } else if (action == setFocusAction() && place.isValid()) {
        view->setFocus();
        view->setCurrentIndex(place);
    }
}

// --- Headers ----------------------------------------------------------------------------------------------------

QString AccessibleHeaderCell::text(QAccessible::Text kind) const {
    return kind == QAccessible::Name && row() < 0 && column() >= 0 ? list()->columnDescription(column()) : QString();
}

QRect AccessibleHeaderCell::rect() const {
    const auto* table = qobject_cast<const QTableView*>(list()->view());
    if (row() >= 0 || column() < 0 || table == nullptr) {
        return {};
    }
    const auto* header = table->horizontalHeader();
    const QRect place(header->sectionViewportPosition(column()), 0, header->sectionSize(column()), header->height());
    return place.translated(header->viewport()->mapToGlobal(QPoint()));
}

QAccessible::Role AccessibleHeaderCell::role() const {
    return row() < 0 ? QAccessible::ColumnHeader : QAccessible::RowHeader;
}

QAccessible::State AccessibleHeaderCell::state() const {
    QAccessible::State state;
    state.invisible = row() >= 0 || column() < 0 || !list()->view()->isVisible();
    return state;
}

QStringList AccessibleHeaderCell::actionNames() const {
    return row() < 0 && column() >= 0 ? QStringList{pressAction()} : QStringList();
}

void AccessibleHeaderCell::doAction(const QString& action) {
    auto* table = qobject_cast<QTableView*>(list()->view());
    if (action == pressAction() && row() < 0 && column() >= 0 && table != nullptr) {
        Q_EMIT table->horizontalHeader()->sectionClicked(column());
    }
}

}  // namespace brimvault::ui
