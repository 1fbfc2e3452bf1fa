#pragma once

#include <QFont>
#include <QLabel>

#include "ui/look/TextLine.h"

namespace brimvault::ui {

/// A label in the window's own type and colours. Main thread.
[[nodiscard]] inline QLabel* makeLabel(const QString& text, const QFont& font, QRgb color) {
    auto* label = new QLabel(text);
    label->setFont(font);
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, QColor(color));
    label->setPalette(colors);
    return label;
}

/// A label that wraps its text. Lines start at the leading side of the layout, whatever the direction of the text.
[[nodiscard]] inline QLabel* makeParagraph(const QString& text, const QFont& font, QRgb color) {
    auto* label = makeLabel(text, font, color);
    label->setWordWrap(true);
    label->setAlignment(leadingSide(label->layoutDirection()) | Qt::AlignAbsolute | Qt::AlignVCenter);
    return label;
}

/// A label that wraps and centres its text.
[[nodiscard]] inline QLabel* makeCentredLabel(const QString& text, const QFont& font, QRgb color) {
    auto* label = makeLabel(text, font, color);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

/// A label that wraps names of files and the like, which may look like markup and are shown as they are.
[[nodiscard]] inline QLabel* makeNameLabel(const QString& text, const QFont& font, QRgb color) {
    auto* label = makeLabel({}, font, color);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

/// A label of one line that is elided where it does not fit. Main thread.
class ElidedLabel final : public QLabel {
public:
    ElidedLabel(const QFont& font, QRgb color) : color_(color) { setFont(font); }

    [[nodiscard]] QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setPen(QColor(color_));
        drawTextLine(painter, rect(), leadingSide(layoutDirection()), font(), text());
    }

private:
    QRgb color_;
};

}  // namespace brimvault::ui
