#include "ui/look/Look.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QScreen>
#include <QStyleFactory>
#include <QToolTip>
#include <algorithm>

namespace brimvault::ui::look {

namespace {

// Desktops set their text to 9 to 11 points, at most 15 pixels; a larger size is the choice of the user.
constexpr qreal maxDefaultPixels = 15.0;
constexpr qreal maxScale = 3.0;

struct Typeface {
    QString family;  ///< empty for the desktop's own
    qreal scale = 1.0;
};

Typeface& typeface() {
    static Typeface chosen;
    return chosen;
}

void chooseTypeface() {
    auto& chosen = typeface();
    const auto pixels = static_cast<qreal>(QFontInfo(QApplication::font()).pixelSize());
    chosen.scale = std::clamp(pixels / maxDefaultPixels, 1.0, maxScale);
    const QString preferred = QStringLiteral("Inter");
    if (QFontDatabase::families().contains(preferred)) {
        chosen.family = preferred;
    }
}

QPalette lightPalette() {
    QPalette palette{QColor(sidebarTop)};
    palette.setColor(QPalette::Window, QColor(sidebarTop));
    palette.setColor(QPalette::Base, QColor(row));
    palette.setColor(QPalette::AlternateBase, QColor(rowAlternate));
    palette.setColor(QPalette::Highlight, QColor(selection));
    palette.setColor(QPalette::HighlightedText, QColor(textOnAccent));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, QColor(textPrimary));
        palette.setColor(QPalette::Disabled, role, QColor(textDisabled));
    }
    palette.setColor(QPalette::ToolTipBase, QColor(row));
    return palette;
}

}  // namespace

qreal textScale() { return typeface().scale; }

int scaled(int points) { return qRound(points * textScale()); }

QFont font(qreal points, QFont::Weight weight) {
    QFont result = QApplication::font();
    if (!typeface().family.isEmpty()) {
        result.setFamily(typeface().family);
    }
    // Type sizes are lengths of the window and must not depend on the DPI of the screen. setPixelSize takes no
    // fractions.
    constexpr qreal typographicPointsPerInch = 72;
    const qreal perInch = QGuiApplication::primaryScreen()->logicalDotsPerInchY();
    result.setPointSizeF(points * textScale() * typographicPointsPerInch / perInch);
    result.setWeight(weight);
    return result;
}

void apply() {
    chooseTypeface();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(lightPalette());
    QToolTip::setPalette(lightPalette());
    constexpr qreal body = 13;
    QApplication::setFont(font(body));
}

}  // namespace brimvault::ui::look
