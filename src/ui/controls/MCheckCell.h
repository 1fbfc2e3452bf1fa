#pragma once

#include <QLatin1String>
#include <QPainter>
#include <QRect>
#include <QString>

namespace brimvault::ui {

/// The background of a check box.
enum class CheckGround { plain, selected };

/// A check box as it is drawn. Main thread.
struct MCheckCell {
    Qt::CheckState state = Qt::Unchecked;
    bool highlighted = false;  ///< pressed; has no effect on a disabled one
    bool hovered = false;
    bool enabled = true;
    CheckGround ground = CheckGround::plain;

    /// Side of the pictures in points, scaled with the text.
    [[nodiscard]] static int side();

    /// "rcheck0", "rcheck1" (mixed) or "rcheck2"; with "Sel" appended while pressed, with "Inv" on a selected row.
    [[nodiscard]] QLatin1String picture() const;
    void draw(QPainter& painter, const QPoint& topLeft) const;
};

/// A check box with a title on a bezel, as it is drawn. Main thread.
struct MCheckCellT : MCheckCell {
    QString title;
    QLatin1String bezel;  ///< a picture
    Qt::LayoutDirection direction = Qt::LeftToRight;

    /// Between the edge of the bezel and its content, in points.
    static constexpr int margin = 6;

    [[nodiscard]] static QRect bezelRect(const QRect& cell) { return cell; }
    [[nodiscard]] QRect imageRect(const QRect& cell) const;
    [[nodiscard]] QRect titleRect(const QRect& cell) const;
    /// The width without the title, in points.
    [[nodiscard]] static int widthBesideTitle();

    void draw(QPainter& painter, const QRect& cell, const QFont& font) const;
};

}  // namespace brimvault::ui
