#pragma once

#include <QModelIndex>

#include "ui/accessibility/AccessiblePlace.h"

namespace brimvault::ui {

/// A cell of a row. A row's check box can be toggled in its own cell and in the text cell: the keyboard focus is on the
/// text cell, which therefore describes the whole row.
class AccessibleCell final : public AccessiblePlace, public QAccessibleTableCellInterface {
public:
    using AccessiblePlace::AccessiblePlace;

    [[nodiscard]] bool isValid() const override { return index().isValid(); }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& action) override;

    [[nodiscard]] bool isSelected() const override;
    [[nodiscard]] QList<QAccessibleInterface*> columnHeaderCells() const override;
    [[nodiscard]] QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    [[nodiscard]] int columnIndex() const override { return column(); }
    [[nodiscard]] int rowIndex() const override { return row(); }
    [[nodiscard]] int columnExtent() const override { return 1; }
    [[nodiscard]] int rowExtent() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* table() const override { return parent(); }

private:
    [[nodiscard]] QModelIndex index() const;
    /// The check box that this cell reports and toggles; invalid for none.
    [[nodiscard]] QModelIndex check() const;
    [[nodiscard]] bool isTickable() const { return check().flags().testFlag(Qt::ItemIsUserCheckable); }
    /// The headers and values of the columns behind the text.
    [[nodiscard]] QString furtherColumns() const;
};

}  // namespace brimvault::ui
