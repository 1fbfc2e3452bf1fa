#include "ui/SectionsTableView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <utility>

#include "ui/AccessibleItemView.h"
#include "ui/CheckPicture.h"
#include "ui/CheckToggle.h"
#include "ui/FocusRing.h"
#include "ui/ImageLoad.h"
#include "ui/Look.h"
#include "ui/SectionListModel.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr QMargins cardShadow(2, 2, 2, 4);
constexpr int cardRadius = 10;
constexpr int checkLeft = 13;
constexpr int iconLeft = 41;
constexpr int iconSize = 32;
constexpr int textLeft = 84;
constexpr int textRight = 6;
constexpr qreal titleSize = 14;
constexpr qreal subtitleSize = 11.5;

// The card of a row: the row without the gap between cards, which lets the shadows show.
QRect card(const QRect& row) {
    constexpr int half = look::sectionRowGap / 2;
    return row.adjusted(half, half, -half, -half);
}

QRect placed(const QStyleOptionViewItem& option, const QRect& within, int left, int width, int height) {
    const QRect place(within.left() + left, within.center().y() - height / 2, width, height);
    return QStyle::visualRect(option.direction, within, place);
}

class SectionDelegate final : public QStyledItemDelegate {
public:
    explicit SectionDelegate(const SectionsTableView* view) : view_(view) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const override {
        return {0, look::scaled(look::sectionRowHeight) + look::sectionRowGap};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const bool selected = (option.state & QStyle::State_Selected) != 0;
        const QRect place = card(option.rect);
        ImageLoad::drawStretched(*painter, place.marginsAdded(cardShadow),
                                 selected ? QLatin1String("btnbgsel") : QLatin1String("btnbg"));
        drawCheck(*painter, option, place, index, selected ? CheckGround::selected : CheckGround::plain);
        const QString icon =
            index.data(SectionListModel::iconRole).toString() + (selected ? QStringLiteral("Sel") : QString());
        ImageLoad::draw(*painter, placed(option, place, iconLeft, iconSize, iconSize).topLeft(),
                        QLatin1String(icon.toLatin1()));
        drawTexts(*painter, option, place, index, selected);
        if (isFocusShown(view_) && view_->currentIndex() == index) {
            drawFocusRing(*painter, place, cardRadius);
        }
    }

private:
    void drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place, const QModelIndex& index,
                   CheckGround ground) const {
        painter.setOpacity(index.flags().testFlag(Qt::ItemIsUserCheckable) ? 1.0 : disabledCheckOpacity);
        const auto state = static_cast<Qt::CheckState>(index.data(Qt::CheckStateRole).toInt());
        ImageLoad::draw(painter, placed(option, place, checkLeft, checkSize, checkSize).topLeft(),
                        checkPicture(state, view_->pressedCheck() == index, ground));
        painter.setOpacity(1.0);
    }

    static void drawTexts(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place,
                          const QModelIndex& index, bool selected) {
        const QFont titleFont = look::font(titleSize, QFont::DemiBold);
        const QFont subtitleFont = look::font(subtitleSize);
        const QFontMetrics title(titleFont);
        const QFontMetrics subtitle(subtitleFont);
        const int width = place.width() - textLeft - textRight;
        const QRect both = placed(option, place, textLeft, width, title.height() + subtitle.height());
        const Qt::Alignment side = leadingSide(option.direction);
        painter.setPen(QColor(selected ? look::textOnAccent : look::textPrimary));
        drawTextLine(painter, QRect(both.left(), both.top(), width, title.height()), side, titleFont,
                     index.data().toString());
        painter.setPen(QColor(selected ? look::textOnAccentSecondary : look::textSecondary));
        drawTextLine(painter, QRect(both.left(), both.top() + title.height(), width, subtitle.height()), side,
                     subtitleFont, index.data(SectionListModel::subtitleRole).toString());
    }

    const SectionsTableView* view_;
};

}  // namespace

SectionsTableView::SectionsTableView(QWidget* parent) : QListView(parent) {
    setItemDelegate(new SectionDelegate(this));
    itemDelegate()->setParent(this);
    setAccessibleName(tr("Sections"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSpacing(0);
    viewport()->setAutoFillBackground(false);
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

void SectionsTableView::setModel(QAbstractItemModel* model) {
    QListView::setModel(model);
    announceCheckChanges(this, 0);
}

QRect SectionsTableView::checkRect(const QModelIndex& index) const {
    const QRect place = card(visualRect(index));
    const QRect column(place.left(), place.top(), iconLeft, place.height());
    return QStyle::visualRect(layoutDirection(), place, column);
}

void SectionsTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        checkRect(index).contains(event->position().toPoint())) {
        pressedCheck_ = index;
        viewport()->update();
        return;
    }
    QListView::mousePressEvent(event);
}

void SectionsTableView::mouseReleaseEvent(QMouseEvent* event) {
    const QModelIndex pressed = std::exchange(pressedCheck_, QPersistentModelIndex());
    if (!pressed.isValid()) {
        QListView::mouseReleaseEvent(event);
        return;
    }
    viewport()->update();
    if (checkRect(pressed).contains(event->position().toPoint())) {
        toggleCheck(this, pressed);
    }
}

void SectionsTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        toggleCheck(this, currentIndex());
        return;
    }
    QListView::keyPressEvent(event);
}

}  // namespace brimvault::ui
