#pragma once

#include <QFont>
#include <QLabel>

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

}  // namespace brimvault::ui
