#pragma once

#include <QAccessible>

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

}  // namespace brimvault::ui
