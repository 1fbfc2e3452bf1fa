#pragma once

#include <QRect>
#include <QString>

#include "ui/controls/MCheckCell.h"

namespace brimvault::ui {

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
