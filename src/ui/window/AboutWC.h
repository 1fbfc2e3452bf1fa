#pragma once

#include <QDialog>
#include <QString>

namespace brimvault::ui {

/// The product's page. The name is reserved and leads nowhere until there is one.
[[nodiscard]] inline QString productPage() { return QStringLiteral("https://brimvault.example/"); }

/// The about window: what the program is, and which version. Main thread.
class AboutWC final : public QDialog {
    Q_OBJECT

public:
    explicit AboutWC(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace brimvault::ui
