#pragma once

#include <QAccessibleWidget>

#include "ui/controls/ProgressIndicator.h"

namespace brimvault::ui {

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

}  // namespace brimvault::ui
