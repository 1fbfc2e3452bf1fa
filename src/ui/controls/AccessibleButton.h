#pragma once

#include <QAbstractButton>
#include <QAccessibleWidget>

namespace brimvault::ui {

/// What an assistive client sees of the window's own buttons. Qt's presentation ticks a check box without the click
/// that the program waits for, does not know that something opens and closes, and can press what a sheet covers. Main
/// thread.
class AccessibleButton final : public QAccessibleWidget {
public:
    explicit AccessibleButton(QAbstractButton* button);

    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& action) override;

private:
    [[nodiscard]] static bool isUsable(const QAbstractButton* button);
    [[nodiscard]] QString clickAction() const;

    QAbstractButton* button_;
};

}  // namespace brimvault::ui
