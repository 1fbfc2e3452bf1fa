#include "ui/AccessibleCell.h"

#include <QAbstractItemView>

#include "ui/AccessibleItemView.h"
#include "ui/CheckToggle.h"
#include "ui/TTableView.h"

namespace brimvault::ui {

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

// A row that cannot be chosen says what those below it are.
QAccessible::Role AccessibleCell::role() const {
    if (index().isValid() && !index().flags().testFlag(Qt::ItemIsSelectable)) {
        return QAccessible::Heading;
    }
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
    state.selectable = place.flags().testFlag(Qt::ItemIsSelectable);
    state.focusable = place.flags().testFlag(Qt::ItemIsEnabled);
    state.selected = isSelected();
    state.focused = view->hasFocus() && view->currentIndex() == place;
    state.invisible = !view->isVisible();
    state.offscreen = !view->viewport()->rect().intersects(view->visualRect(place));
    const QVariant check = place.data(Qt::CheckStateRole);
    state.checkable = check.isValid();
    const bool locked = state.checkable && !place.flags().testFlag(Qt::ItemIsUserCheckable);
    state.disabled = locked || !view->isEnabled();
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
    QStringList names;
    if (index().flags().testFlag(Qt::ItemIsUserCheckable)) {
        names.append(toggleAction());
    }
    names.append(setFocusAction());
    if (qobject_cast<TTableView*>(list()->view()) != nullptr) {
        names.append(showMenuAction());
    }
    return names;
}

void AccessibleCell::doAction(const QString& action) {
    auto* view = list()->view();
    const QModelIndex place = index();
    if (action == toggleAction() && place.flags().testFlag(Qt::ItemIsUserCheckable)) {
        toggleCheck(view, place);
    } else if (action == setFocusAction() && place.isValid()) {
        view->setFocus();
        view->setCurrentIndex(place);
    } else if (auto* table = qobject_cast<TTableView*>(view);
               action == showMenuAction() && table != nullptr && place.isValid()) {
        table->setCurrentIndex(place);
        table->requestMenuOfCurrentRow();
    }
}

}  // namespace brimvault::ui
