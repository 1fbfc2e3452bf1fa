#pragma once

#include <QPainter>
#include <QRect>

#include "ui/look/TextData.h"

namespace brimvault::ui {

/// A row of the section list as it is drawn: a picture, and the title over a smaller subtitle and, where there is one,
/// a note. One that is muted has a pale picture and a title that is no heavier than the subtitle. Main thread.
class ImageTextCell {
public:
    explicit ImageTextCell(const TextImgData& value) : value_(value) {}

    /// In a cell that is laid out in that direction; what does not fit is cut.
    void draw(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction) const;
    /// The whole text where it is cut in the cell; empty if nothing is cut.
    [[nodiscard]] QString expansionText(const QRect& cell) const;

private:
    [[nodiscard]] static int textWidth(const QRect& cell);

    const TextImgData& value_;
};

}  // namespace brimvault::ui
