#pragma once

#include "ui/controls/TitledCheckBox.h"

namespace brimvault::ui {

/// The check box of all items of a list: none, some (mixed) or all. A click on a mixed one selects all. Its accessible
/// name is always "Select All", its text says what a click does. Main thread.
class SelectAllButton final : public TitledCheckBox {
    Q_OBJECT

public:
    explicit SelectAllButton(QWidget* parent = nullptr);

    /// Shows a state without a signal: -1 mixed, 0 none, 1 all.
    void setSelAllChecked(int state);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void nextCheckState() override;

private:
    void updateBtnSelectAllLook();
};

}  // namespace brimvault::ui
