#include "ui/report/NotCleanedRowDelegate.h"

#include <QPainter>
#include <QTextLayout>

#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"
#include "ui/look/PlainToolTip.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int titleIndent = 12;
constexpr int messageIndent = 22;
constexpr int endMargin = 12;
constexpr qreal titleSize = 12;
constexpr qreal messageSize = 13;
constexpr int focusRadius = 5;

QFont messageFont() { return look::font(messageSize); }

QRect textPlace(const QStyleOptionViewItem& option, int indent) {
    const QRect place = option.rect.adjusted(indent, 0, -endMargin, 0);
    return QStyle::visualRect(option.direction, option.rect, place);
}

// Breaks the text into lines, within a word if it is longer than a line, and returns the total height.
qreal breakIntoLines(QTextLayout& layout, qreal width, Qt::Alignment side) {
    QTextOption how(side);
    how.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    how.setTextDirection(layout.text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(how);
    qreal height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        height += line.height();
    }
    layout.endLayout();
    return height;
}

}  // namespace

bool NotCleanedRowDelegate::wraps(const QModelIndex& index) const {
    return !view_->uniformItemSizes() && !NotCleanedListView::isTitle(index);
}

QSize NotCleanedRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const {
    const int oneLine = look::scaled(look::itemRowHeight);
    if (!wraps(index)) {
        return {0, oneLine};
    }
    const QFont font = messageFont();
    QTextLayout layout(index.data().toString(), font);
    const qreal height = breakIntoLines(layout, view_->viewport()->width() - messageIndent - endMargin, Qt::AlignLeft);
    return {0, std::max(oneLine, qCeil(height) + oneLine - QFontMetrics(font).height())};
}

void NotCleanedRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
    painter->save();
    if (NotCleanedListView::isTitle(index)) {
        drawTitle(*painter, option, index);
    } else {
        drawMessage(*painter, option, index);
    }
    painter->restore();
}

void NotCleanedRowDelegate::drawTitle(QPainter& painter, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const {
    painter.fillRect(option.rect, QColor(look::drawerAlternate));
    painter.setPen(QColor(look::textHeader));
    drawTextLine(painter, textPlace(option, titleIndent), leadingSide(option.direction),
                 look::font(titleSize, QFont::DemiBold), index.data().toString());
}

void NotCleanedRowDelegate::drawMessage(QPainter& painter, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    painter.fillRect(option.rect, QColor(selected ? look::selection : look::row));
    const QModelIndex below = index.siblingAtRow(index.row() + 1);
    if (!selected && below.isValid() && !NotCleanedListView::isTitle(below)) {
        painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1),
                         QColor(look::drawerAlternate));
    }
    painter.setPen(QColor(selected ? look::textOnAccent : look::textPrimary));
    const QRect place = textPlace(option, messageIndent);
    const Qt::Alignment side = leadingSide(option.direction);
    const QString text = index.data().toString();
    if (wraps(index)) {
        QTextLayout layout(text, messageFont());
        const qreal height = breakIntoLines(layout, place.width(), side);
        layout.draw(&painter, QPointF(place.left(), place.top() + (place.height() - height) / 2));
    } else {
        drawTextLine(painter, place, side, messageFont(), text, Qt::ElideMiddle);
    }
    if (isFocusShown(view_) && view_->currentIndex() == index) {
        drawFocusRing(painter, option.rect, focusRadius);
    }
}

bool NotCleanedRowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) {
    const QString text = index.data().toString();
    const bool elided =
        index.isValid() && !wraps(index) && isElided(text, messageFont(), textPlace(option, messageIndent).width());
    if (event->type() != QEvent::ToolTip || !elided) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    showPlainToolTip(*event, text, view);
    return true;
}

}  // namespace brimvault::ui
