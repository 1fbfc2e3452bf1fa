#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

/// The colours, type sizes and lengths of the window, in points. All on the main thread.
namespace brimvault::ui::look {

inline constexpr QRgb accentDark = 0xff1f5fd8;
/// A selected row; white text on it has a contrast of 4.5 to 1.
inline constexpr QRgb selection = 0xff2a6ae4;
// Every text, disabled ones included, has a contrast of at least 4.5 to 1 with its background.
inline constexpr QRgb textPrimary = 0xff1b2430;
inline constexpr QRgb textSecondary = 0xff5d6b80;
inline constexpr QRgb textHeader = 0xff56647a;
inline constexpr QRgb textControl = 0xff44536a;
inline constexpr QRgb textOnAccent = 0xffffffff;
inline constexpr QRgb textOnAccentSecondary = 0xfff3f7ff;
inline constexpr QRgb textWarning = 0xff9a5b00;
inline constexpr QRgb textWarningOnAccent = 0xfffff6e0;
inline constexpr QRgb textDisabled = 0xff586678;
inline constexpr QRgb separator = 0xffd5dde8;
inline constexpr QRgb hoverLine = 0xffa9c6f7;
inline constexpr QRgb headerLine = 0xffdde4ec;
inline constexpr QRgb sidebarTop = 0xfff3f6fa;
inline constexpr QRgb sidebarBottom = 0xffe6ecf4;
inline constexpr QRgb bottomBarTop = 0xfff8fafc;
inline constexpr QRgb bottomBarBottom = 0xffeef2f7;
inline constexpr QRgb sortedHeaderTop = 0xffeaf1fd;
inline constexpr QRgb sortedHeaderBottom = 0xffdde8fa;
inline constexpr QRgb row = 0xffffffff;
inline constexpr QRgb rowAlternate = 0xfff7f9fc;
inline constexpr QRgb questionFacts = 0xfff1f5fb;
inline constexpr QRgb warningGround = 0xfffff7e6;
inline constexpr QRgb shadow = 0xff141e2d;         ///< of a sheet, faded out
inline constexpr QRgb questionShade = 0x5c141e2d;  ///< over a window that waits for an answer
inline constexpr QRgb sheetShade = 0x33141e2d;     ///< over a window behind a sheet
inline constexpr QRgb drawer = 0xfff7f9fc;
inline constexpr QRgb drawerAlternate = 0xffedf1f6;
inline constexpr QRgb flagEdge = 0x2e000000;  ///< flags with a white edge stand on white rows
inline constexpr QRgb scrollHandle = 0xffaebbcb;
inline constexpr QRgb scrollHandleHovered = 0xff7a8798;

inline constexpr int smallCornerRadius = 8;
inline constexpr int sidebarWidth = 296;
inline constexpr int sectionRowHeight = 60;
inline constexpr int sectionRowGap = 4;
inline constexpr int itemRowHeight = 28;
inline constexpr int headerHeight = 29;
inline constexpr int titleBarHeight = 62;
inline constexpr int bottomBarHeight = 84;
inline constexpr int buttonHeight = 44;
inline constexpr int smallButtonHeight = 40;  ///< with the shadow; in alerts and sheets

/// The user's text size relative to the desktop's default, at least 1. Lengths that hold text are multiplied by it.
[[nodiscard]] qreal textScale();
/// A length in points, multiplied by the text scale.
[[nodiscard]] int scaled(int points);
/// The window's typeface at a size in points, multiplied by the text scale.
[[nodiscard]] QFont font(qreal points, QFont::Weight weight = QFont::Normal);

/// Sets style, palette and font of the application: light, whatever the desktop's theme. Once, before the first window.
void apply();

}  // namespace brimvault::ui::look
