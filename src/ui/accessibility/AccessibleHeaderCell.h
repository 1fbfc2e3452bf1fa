#pragma once

#include "ui/accessibility/AccessiblePlace.h"

class QAction;

namespace brimvault::ui {

/// The header of a column, which sorts by it when pressed and describes the sort order; or the empty header of a row.
class AccessibleHeaderCell final : public AccessiblePlace {
public:
    using AccessiblePlace::AccessiblePlace;

    [[nodiscard]] bool isValid() const override { return true; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& action) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString& action) const override;

private:
    [[nodiscard]] QString sortedHow() const;
    /// Null if the rows cannot be sorted by the column.
    [[nodiscard]] QAction* sortAction() const;
};

}  // namespace brimvault::ui
