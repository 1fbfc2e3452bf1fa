#pragma once

#include <QModelIndex>

#include "ui/accessibility/AccessiblePlace.h"

namespace brimvault::ui {

/// A cell of a row; it can be chosen. The check box of a row can be ticked in its own cell and in that of the text,
/// where the keyboard is: this one tells everything of its row.
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
    /// Where the check box is that is told of and ticked here; invalid where none is.
    [[nodiscard]] QModelIndex check() const;
    [[nodiscard]] bool isTickable() const { return check().flags().testFlag(Qt::ItemIsUserCheckable); }
    /// What the columns behind the text say of the row.
    [[nodiscard]] QString furtherColumns() const;
};

}  // namespace brimvault::ui
