#pragma once

#include <QDialog>

namespace brimvault::ui {

/// The about window: what the program is, and which version. Main thread.
class AboutWC final : public QDialog {
    Q_OBJECT

public:
    explicit AboutWC(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace brimvault::ui
