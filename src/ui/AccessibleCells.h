#pragma once

#include <QAccessible>
#include <QModelIndex>

namespace brimvault::ui {

class AccessibleItemView;

/// A child of an AccessibleItemView: a row and a column, -1 for the header's. Main thread.
class AccessiblePlace : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessiblePlace(const AccessibleItemView* list, int row, int column) : list_(list), row_(row), column_(column) {}
    Q_DISABLE_COPY_MOVE(AccessiblePlace)

    [[nodiscard]] int row() const { return row_; }
    [[nodiscard]] int column() const { return column_; }

    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
    void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*action*/) const override { return {}; }

protected:
    ~AccessiblePlace() override = default;
    [[nodiscard]] const AccessibleItemView* list() const { return list_; }

private:
    const AccessibleItemView* list_;  ///< owns it
    const int row_;
    const int column_;
};

/// A cell of a row. It can be ticked where it has a check box, and chosen wherever it is.
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
};

/// The header of a column, which sorts by it when pressed; or the empty one of a row.
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
};

}  // namespace brimvault::ui
