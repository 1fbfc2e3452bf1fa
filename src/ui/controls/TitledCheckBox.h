#pragma once

#include <QCheckBox>

namespace brimvault::ui {

/// A check box with its title, drawn as an MCheckCellT. Main thread.
class TitledCheckBox : public QCheckBox {
    Q_OBJECT

public:
    explicit TitledCheckBox(const QString& title, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return sizeWith(text()); }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
    /// The size that it needs with a title.
    [[nodiscard]] QSize sizeWith(const QString& title) const;

private:
    [[nodiscard]] QLatin1String plate() const;
};

}  // namespace brimvault::ui
