#include "ui/PlashkaView.h"

#include <QAccessible>
#include <QPainter>

#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"
#include "ui/FocusRing.h"
#include "ui/ImageLoad.h"
#include "ui/Look.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int usualHeight = 62;
constexpr int usualWidth = 370;
constexpr int leastWidth = 200;
constexpr int margin = 12;
constexpr int cornerRadius = 10;
constexpr qreal largeSize = 21;
constexpr qreal leastLargeSize = 15;
constexpr qreal smallSize = 12;

// In a narrow window the large text becomes smaller before any of it is cut.
QFont largeFont(const QString& text, int room) {
    QFont font = look::font(largeSize, QFont::Bold);
    for (qreal size = largeSize; size > leastLargeSize && QFontMetrics(font).horizontalAdvance(text) > room; --size) {
        font = look::font(size - 1, QFont::Bold);
    }
    return font;
}
QFont smallFont() { return look::font(smallSize); }

}  // namespace

PlashkaView::PlashkaView(QWidget* parent)
    : QAbstractButton(parent), textNews_([this] {
          QAccessibleEvent event(this, QAccessible::NameChanged);
          QAccessible::updateAccessibility(&event);
      }) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::pressed, this,
            [] { engine::NotificationCenter::defaultCenter().post(engine::notification::plashkaPressed); });
}

void PlashkaView::setTexts(const QString& large, const QString& small) {
    if (large == large_ && small == small_) {
        return;
    }
    large_ = large;
    small_ = small;
    if (QAccessible::isActive()) {
        textNews_.changed();
    }
    update();
}

QString PlashkaView::spokenText() const { return large_.isEmpty() ? small_ : large_ + QStringLiteral(", ") + small_; }

QSize PlashkaView::sizeHint() const { return {look::scaled(usualWidth), look::scaled(usualHeight)}; }

QSize PlashkaView::minimumSizeHint() const { return {leastWidth, look::scaled(usualHeight)}; }

void PlashkaView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    // The window may have changed under the pointer.
    const bool hovered = underMouse() && rect().contains(mapFromGlobal(QCursor::pos()));
    ImageLoad::drawStretched(painter, rect(), hovered ? QLatin1String("bg_selected") : QLatin1String("bg_status"));
    const auto line = [&](const QFont& font, QRgb color, int top, const QString& text) {
        painter.setPen(QColor(color));
        drawTextLine(painter, QRect(margin, top, width() - 2 * margin, QFontMetrics(font).height()), Qt::AlignHCenter,
                     font, text);
    };
    const QFont large = largeFont(large_, width() - 2 * margin);
    const int largeHeight = large_.isEmpty() ? 0 : QFontMetrics(large).height();
    const int smallHeight = QFontMetrics(smallFont()).height();
    const int top = (height() - largeHeight - smallHeight) / 2;
    line(large, look::textPrimary, top, large_);
    line(smallFont(), look::textSecondary, top + largeHeight, small_);
    if (isFocusShown(this)) {
        drawFocusRing(painter, rect(), cornerRadius);
    }
}

}  // namespace brimvault::ui
