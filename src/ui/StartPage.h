#pragma once

#include <QLabel>
#include <QWidget>

#include "ui/ActionButton.h"

namespace brimvault::ui {

/// What stands on the right before the first scan. Main thread.
class StartPage final : public QWidget {
    Q_OBJECT

public:
    explicit StartPage(QWidget* parent = nullptr);

    [[nodiscard]] ActionButton* btnStartScanButton2() const { return btnStartScanButton2_; }
    [[nodiscard]] QLabel* ptxtStartDescClean() const { return ptxtStartDescClean_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ActionButton* btnStartScanButton2_;
    QLabel* ptxtStartDescClean_;
};

}  // namespace brimvault::ui
