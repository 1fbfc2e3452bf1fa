#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>

#include "ui/controls/Announcer.h"

namespace brimvault::ui {

/// A spinner beside the text of a button, in the colour of the text. It is transparent for the mouse and hidden while
/// it is not animated. Assistive clients see it as a progress bar. Main thread.
class ProgressIndicator final : public QWidget {
    Q_OBJECT

public:
    /// The name says what is in progress.
    ProgressIndicator(const QString& accessibleName, QWidget* parent);

    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimated() const { return turning_.isActive(); }
    /// The progress for assistive clients; 0 when the animation starts.
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
