#pragma once

#include <QAbstractItemView>
#include <QAccessibleWidget>

#include "ui/controls/Sheet.h"

namespace brimvault::ui {

/// The list as its cells see it. Main thread.
class AccessibleList : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    Q_DISABLE_COPY_MOVE(AccessibleList)

    [[nodiscard]] QAbstractItemView* view() const { return view_; }
    /// True unless it is disabled or covered by a sheet.
    [[nodiscard]] bool isUsable() const { return view_->isEnabled() && !Sheet::covers(view_); }
    /// 1 for a table with headers, 0 for a plain list.
    [[nodiscard]] int headers() const { return headers_; }
    /// The index of the child at a row and column; -1 stands for the header.
    [[nodiscard]] int childIndex(int row, int column) const {
        return (row + headers_) * (columnCount() + headers_) + column + headers_;
    }

protected:
    AccessibleList(QAbstractItemView* view, int headers)
        : QAccessibleWidget(view, headers == 0 ? QAccessible::List : QAccessible::Table),
          view_(view),
          headers_(headers) {}
    ~AccessibleList() override = default;

private:
    QAbstractItemView* view_;
    int headers_;
};

/// A child of an AccessibleList, known by its row and column; -1 stands for the header. Main thread.
class AccessiblePlace : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessiblePlace(const AccessibleList* list, int row, int column) : list_(list), row_(row), column_(column) {}
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
    [[nodiscard]] const AccessibleList* list() const { return list_; }

private:
    const AccessibleList* list_;  ///< owns it
    const int row_;
    const int column_;
};

}  // namespace brimvault::ui
