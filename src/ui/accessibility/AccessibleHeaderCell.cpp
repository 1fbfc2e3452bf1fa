#include "ui/accessibility/AccessibleHeaderCell.h"

#include <QAction>
#include <QCoreApplication>
#include <QHeaderView>

#include "ui/list/TTableView.h"

namespace brimvault::ui {

QString AccessibleHeaderCell::text(QAccessible::Text kind) const {
    if (row() >= 0 || column() < 0) {
        return {};
    }
    return kind == QAccessible::Name          ? list()->columnDescription(column())
           : kind == QAccessible::Description ? sortedHow()
                                              : QString();
}

QString AccessibleHeaderCell::sortedHow() const {
    const auto* table = qobject_cast<const TTableView*>(list()->view());
    if (table == nullptr || table->horizontalHeader()->sortIndicatorSection() != column()) {
        return {};
    }
    return table->horizontalHeader()->sortIndicatorOrder() == Qt::AscendingOrder
               ? QCoreApplication::translate("Sorting", "Sorted ascending")
               : QCoreApplication::translate("Sorting", "Sorted descending");
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
    state.disabled = !list()->isUsable();
    return state;
}

QStringList AccessibleHeaderCell::actionNames() const {
    return sortAction() == nullptr || !list()->isUsable() ? QStringList() : QStringList{pressAction()};
}

void AccessibleHeaderCell::doAction(const QString& action) {
    if (auto* sort = sortAction(); action == pressAction() && sort != nullptr && list()->isUsable()) {
        sort->trigger();
    }
}

QStringList AccessibleHeaderCell::keyBindingsForAction(const QString& action) const {
    const auto* sort = sortAction();
    return action == pressAction() && sort != nullptr ? QStringList{sort->shortcut().toString()} : QStringList();
}

QAction* AccessibleHeaderCell::sortAction() const {
    const auto* table = qobject_cast<const TTableView*>(list()->view());
    return row() < 0 && table != nullptr ? table->sortAction(column()) : nullptr;
}

}  // namespace brimvault::ui
