#pragma once

#include <QCheckBox>

namespace brimvault::ui {

/// The check box of all items of a list: none, some (mixed) or all. A click on a mixed one selects all. Its accessible
/// name is always "Select All", its text says what a click does. Main thread.
class SelectAllButton final : public QCheckBox {
    Q_OBJECT

public:
    explicit SelectAllButton(QWidget* parent = nullptr);

    /// Shows a state without telling anyone: -1 mixed, 0 none, 1 all.
    void setSelAllChecked(int state);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void nextCheckState() override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

private:
    void updateBtnSelectAllLook();
    [[nodiscard]] QLatin1String plate() const;
};

}  // namespace brimvault::ui
