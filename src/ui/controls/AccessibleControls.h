#pragma once

#include <QAbstractButton>
#include <QAccessibleWidget>

#include "ui/controls/ProgressIndicator.h"
#include "ui/controls/Sheet.h"

namespace brimvault::ui {

/// What an assistive client sees of the window's own buttons. Qt's interface changes a check box without emitting
/// `clicked`, has no expanded state, and presses buttons that a sheet covers. Main thread.
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

/// What an assistive client sees of a progress indicator: a bar from 0 to 100 per cent. Main thread.
class AccessibleProgress final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleProgress(ProgressIndicator* indicator)
        : QAccessibleWidget(indicator, QAccessible::ProgressBar), indicator_(indicator) {}

    [[nodiscard]] QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.busy = indicator_->isAnimated();
        state.readOnly = true;
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QVariant currentValue() const override { return indicator_->percent(); }
    void setCurrentValue(const QVariant& /*value*/) override {}
    [[nodiscard]] QVariant minimumValue() const override { return 0; }
    [[nodiscard]] QVariant maximumValue() const override { return 100; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1; }

private:
    ProgressIndicator* indicator_;
};

/// What an assistive client sees of a sheet: a modal dialog. Main thread.
class AccessibleSheet final : public QAccessibleWidget {
public:
    explicit AccessibleSheet(Sheet* sheet) : QAccessibleWidget(sheet, QAccessible::Dialog) {}

    [[nodiscard]] QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

}  // namespace brimvault::ui
