#include "ui/controls/PlashkaView.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <utility>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "ui/look/FocusRing.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int defaultHeight = 62;
constexpr int defaultWidth = 370;
constexpr int minWidth = 200;
constexpr int margin = 12;
constexpr int cornerRadius = 10;
constexpr qreal largeSize = 21;
constexpr qreal minLargeSize = 15;
constexpr qreal smallSize = 12;

// A narrow window shrinks the large text before it is elided.
QFont largeFont(const QString& text, int room) {
    QFont font = look::font(largeSize, QFont::Bold);
    for (qreal size = largeSize; size > minLargeSize && QFontMetrics(font).horizontalAdvance(text) > room; --size) {
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

QSize PlashkaView::sizeHint() const { return {look::scaled(defaultWidth), look::scaled(defaultHeight)}; }

QSize PlashkaView::minimumSizeHint() const { return {minWidth, look::scaled(defaultHeight)}; }

bool PlashkaView::event(QEvent* event) {
    const bool handled = QAbstractButton::event(event);
    switch (event->type()) {
        case QEvent::HoverEnter:
        case QEvent::HoverMove:
        case QEvent::HoverLeave:
        case QEvent::Leave:
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Hide:
            updateHover();
            break;
        default:
            break;
    }
    return handled;
}

// No event tells the panel that another widget came between it and the pointer, or that the window moved away from
// under the pointer. While it is highlighted, it therefore filters the events of the whole application.
bool PlashkaView::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Leave:
        case QEvent::WindowBlocked:
        case QEvent::WindowDeactivate:
            QMetaObject::invokeMethod(this, &PlashkaView::updateHover, Qt::QueuedConnection);
            break;
        default:
            break;
    }
    return QAbstractButton::eventFilter(watched, event);
}

void PlashkaView::updateHover() {
    const bool hovered = isUnderPointer();
    if (std::exchange(hovered_, hovered) == hovered) {
        return;
    }
    if (hovered) {
        qApp->installEventFilter(this);
    } else {
        qApp->removeEventFilter(this);
    }
    update();
}

// Some desktops do not report the pointer outside of the window; underMouse() of the window is right even then.
bool PlashkaView::isUnderPointer() const {
    const auto* modal = QApplication::activeModalWidget();
    const bool reachable = QApplication::activePopupWidget() == nullptr && (modal == nullptr || modal == window());
    return isVisible() && reachable && window()->underMouse() && QApplication::widgetAt(QCursor::pos()) == this;
}

void PlashkaView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    ImageLoad::drawStretched(painter, rect(), hovered_ ? QLatin1String("bg_selected") : QLatin1String("bg_status"));
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
