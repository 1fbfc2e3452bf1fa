#pragma once

#include <QLatin1String>
#include <QPainter>
#include <QRect>
#include <QString>

namespace brimvault::ui {

/// On what a check box is drawn.
enum class CheckGround { plain, selected };

/// A check box as it is drawn. Main thread.
struct MCheckCell {
    Qt::CheckState state = Qt::Unchecked;
    bool highlighted = false;  ///< held down; not to be seen of one that is disabled
    bool hovered = false;
    bool enabled = true;
    CheckGround ground = CheckGround::plain;

    /// Side of the pictures, in points, grown with the text.
    [[nodiscard]] static int side();

    /// "rcheck0", "rcheck1" (mixed) or "rcheck2"; held down the "Sel" form of each, on a selected row "Inv".
    [[nodiscard]] QLatin1String picture() const;
    /// In the place given, which is as large as the picture.
    void draw(QPainter& painter, const QPoint& topLeft) const;
};

/// A check box with a title on a plate of its own, as it is drawn. Main thread.
struct MCheckCellT : MCheckCell {
    QString title;
    QLatin1String bezel;  ///< the picture of the plate
    Qt::LayoutDirection direction = Qt::LeftToRight;

    /// Between the edge of the plate and what stands on it, in points.
    static constexpr int margin = 6;

    [[nodiscard]] static QRect bezelRect(const QRect& cell) { return cell; }
    [[nodiscard]] QRect imageRect(const QRect& cell) const;
    [[nodiscard]] QRect titleRect(const QRect& cell) const;
    /// What stands beside the title, in points.
    [[nodiscard]] static int widthBesideTitle();

    void draw(QPainter& painter, const QRect& cell, const QFont& font) const;
};

}  // namespace brimvault::ui
