#include "ui/accessibility/AccessibleCell.h"

#include <QHeaderView>

#include "ui/list/TTableView.h"
#include "ui/table/CheckTableView.h"

namespace brimvault::ui {

QModelIndex AccessibleCell::index() const { return list()->view()->model()->index(row(), column()); }

QModelIndex AccessibleCell::check() const {
    const bool table = qobject_cast<const CheckTableView*>(list()->view()) != nullptr;
    const bool tells = column() == CheckTableView::checkColumn || (table && column() == CheckTableView::textColumn);
    const QModelIndex box = tells ? index().siblingAtColumn(CheckTableView::checkColumn) : QModelIndex();
    return box.data(Qt::CheckStateRole).isValid() ? box : QModelIndex();
}

void* AccessibleCell::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableCellInterface) {
        return static_cast<QAccessibleTableCellInterface*>(this);
    }
    return AccessiblePlace::interface_cast(type);
}

QString AccessibleCell::text(QAccessible::Text kind) const {
    if (kind == QAccessible::Description) {
        QStringList parts{index().data(Qt::AccessibleDescriptionRole).toString(),
                          check().isValid() ? furtherColumns() : QString()};
        parts.removeAll(QString());
        return parts.join(QStringLiteral(". "));
    }
    if (kind != QAccessible::Name) {
        return {};
    }
    const QVariant spoken = index().data(Qt::AccessibleTextRole);
    return spoken.isValid() ? spoken.toString() : index().data(Qt::DisplayRole).toString();
}

// In visual order: the count is shown before the size.
QString AccessibleCell::furtherColumns() const {
    const auto* table = qobject_cast<const QTableView*>(list()->view());
    QStringList said;
    for (int place = CheckTableView::textColumn + 1; table != nullptr && place < list()->columnCount(); ++place) {
        const int column = table->horizontalHeader()->logicalIndex(place);
        said.append(QStringLiteral("%1: %2").arg(list()->columnDescription(column),
                                                 index().siblingAtColumn(column).data().toString()));
    }
    return said.join(QStringLiteral(", "));
}

QRect AccessibleCell::rect() const {
    const auto* view = list()->view();
    return view->visualRect(index()).translated(view->viewport()->mapToGlobal(QPoint()));
}

// A row that cannot be selected is the title of those below it.
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
    const QModelIndex box = check();
    state.checkable = box.isValid();
    state.checked = box.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    // A row whose check box is locked can still be selected, so that only the cell of the check box is disabled.
    const bool locked = state.checkable && !isTickable();
    const bool boxAlone = list()->headers() != 0 && column() == CheckTableView::checkColumn;
    state.readOnly = locked;
    state.disabled = (locked && boxAlone) || !list()->isUsable();
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
    if (!list()->isUsable()) {
        return {};
    }
    QStringList names;
    if (isTickable()) {
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
    if (!list()->isUsable()) {
        return;
    }
    if (action == toggleAction() && isTickable()) {
        toggleCheck(view, check());
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
