#include "ui/sections/ImageTextCell.h"

#include <QStyle>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int pictureSide = 32;
constexpr int textLeft = 43;
constexpr qreal titleSize = 14;
constexpr qreal subtitleSize = 11.5;

constexpr qreal mutedOpacity = 0.45;

QFont titleFont(bool muted) { return look::font(titleSize, muted ? QFont::Normal : QFont::DemiBold); }
QFont subtitleFont() { return look::font(subtitleSize); }

QRect placed(const QRect& cell, Qt::LayoutDirection direction, int left, int width, int height) {
    const QRect place(cell.left() + left, cell.top() + (cell.height() - height) / 2, width, height);
    return QStyle::visualRect(direction, cell, place);
}

}  // namespace

// A row ends with a spacer.
int ImageTextCell::textWidth(const QRect& cell) {
    return cell.width() - look::scaled(textLeft) - qRound(ImageLoad::sizeOf(QLatin1String("emptyImg")).width());
}

void ImageTextCell::draw(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction) const {
    const QByteArray picture = QByteArray(value_.picture.data()) + (value_.selected ? "Sel" : "");
    painter.setOpacity(value_.muted ? mutedOpacity : 1.0);
    ImageLoad::draw(painter, placed(cell, direction, 0, look::scaled(pictureSide), look::scaled(pictureSide)).topLeft(),
                    QLatin1String(picture));
    painter.setOpacity(1.0);  // text keeps its contrast

    const QFont title = titleFont(value_.muted);
    const int titleHeight = QFontMetrics(title).height();
    const int subtitleHeight = QFontMetrics(subtitleFont()).height();
    const int lines = value_.note.isEmpty() ? 1 : 2;  // below the title
    const QRect both =
        placed(cell, direction, look::scaled(textLeft), textWidth(cell), titleHeight + lines * subtitleHeight);
    const Qt::Alignment side = leadingSide(direction);
    painter.setPen(QColor(value_.selected ? look::textOnAccent
                          : value_.muted  ? look::textSecondary
                                          : look::textPrimary));
    drawTextLine(painter, QRect(both.left(), both.top(), both.width(), titleHeight), side, title, value_.title);
    painter.setPen(QColor(value_.selected ? look::textOnAccentSecondary : look::textSecondary));
    drawTextLine(painter, QRect(both.left(), both.top() + titleHeight, both.width(), subtitleHeight), side,
                 subtitleFont(), value_.subtitle);
    drawTextLine(painter, QRect(both.left(), both.top() + titleHeight + subtitleHeight, both.width(), subtitleHeight),
                 side, subtitleFont(), value_.note);
}

QString ImageTextCell::expansionText(const QRect& cell) const {
    const int room = textWidth(cell);
    const bool cut = QFontMetrics(titleFont(value_.muted)).horizontalAdvance(value_.title) > room ||
                     QFontMetrics(subtitleFont()).horizontalAdvance(value_.subtitle) > room ||
                     QFontMetrics(subtitleFont()).horizontalAdvance(value_.note) > room;
    QStringList lines = {value_.title, value_.subtitle, value_.note};
    lines.removeAll(QString());
    return cut ? lines.join(QLatin1Char('\n')) : QString();
}

}  // namespace brimvault::ui
