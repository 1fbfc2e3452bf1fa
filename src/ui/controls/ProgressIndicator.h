#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>

#include "ui/controls/Announcer.h"

namespace brimvault::ui {

/// A turning ring beside the text of a button: something is going on. It is drawn in the colour of the text, lets the
/// mouse through to the button, and is hidden while nothing goes on. Assistive clients are told how far it has come.
/// Main thread.
class ProgressIndicator final : public QWidget {
    Q_OBJECT

public:
    /// The name says what goes on.
    ProgressIndicator(const QString& accessibleName, QWidget* parent);

    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimated() const { return turning_.isActive(); }
    /// How far it has come; 0 when it starts.
    void setPercent(int percent);
    [[nodiscard]] int percent() const { return percent_; }
    void setColor(const QColor& color) { color_ = color; }

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void animationChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_;
    QTimer turning_;
    int step_ = 0;
    int percent_ = 0;
    Announcer percentNews_;
};

}  // namespace brimvault::ui
