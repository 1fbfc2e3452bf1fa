#pragma once

#include <QAccessibleWidget>

#include "ui/controls/Sheet.h"

namespace brimvault::ui {

/// What an assistive client sees of a sheet: a dialog that is to be answered first. Main thread.
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
