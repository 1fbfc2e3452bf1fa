#include "ui/AccessibleHeaderCell.h"

#include <QHeaderView>
#include <QTableView>

#include "ui/AccessibleItemView.h"

namespace brimvault::ui {

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
