#pragma once

#include <QLatin1String>
#include <QPushButton>
#include <QTimer>

namespace brimvault::ui {

/// A main button of the window: a picture stretched behind its text, and a spinning indicator beside the text while
/// something is going on. Main thread.
class ActionButton final : public QPushButton {
    Q_OBJECT

public:
    /// What the button looks like: its picture at rest has "Des" appended to the name, the pressed one has not.
    enum class Look { scan, quiet, stop, clean };

    explicit ActionButton(QWidget* parent = nullptr);

    /// The text shown and the name that an assistive client reads.
    void setLook(Look look, const QString& text, const QString& accessibleName);
    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimated() const { return spinner_.isActive(); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QLatin1String picture() const;
    [[nodiscard]] QColor textColor() const;
    void drawSpinner(QPainter& painter, const QRectF& place) const;

    Look look_ = Look::scan;
    QTimer spinner_;
    int spinnerStep_ = 0;
};

}  // namespace brimvault::ui
