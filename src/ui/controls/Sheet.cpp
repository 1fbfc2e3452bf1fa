#include "ui/controls/Sheet.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr int minMargin = 16;   // beside and below the panel
constexpr int slideTime = 200;  // milliseconds; too short to wait for
constexpr int cornerRadius = 10;
constexpr int shadowReach = 28;
constexpr qreal shadowStrength = 0.045;

bool takesTab(const QWidget* widget) {
    return widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

// Whether these are the keys by which the window ends the program.
bool isQuit(const QKeyEvent& keys, const QWidget* window) {
    const auto actions = window->actions();
    return std::any_of(actions.begin(), actions.end(), [&keys](const QAction* action) {
        return action->menuRole() == QAction::QuitRole &&
               action->shortcuts().contains(QKeySequence(keys.keyCombination()));
    });
}

// Nested outlines, fainter from inside to outside.
void drawShadow(QPainter& painter, const QRectF& shape) {
    painter.setBrush(Qt::NoBrush);
    for (int distance = 0; distance < shadowReach; ++distance) {
        const qreal near = 1 - static_cast<qreal>(distance) / shadowReach;
        QColor color(look::shadow);
        color.setAlphaF(static_cast<float>(shadowStrength * near * near));
        painter.setPen(QPen(color, 2));
        painter.drawRoundedRect(shape.adjusted(-distance, 0, distance, distance), cornerRadius + distance,
                                cornerRadius + distance);
    }
}

}  // namespace

Sheet::Sheet(const QSize& defaultSize, QWidget* window)
    : QWidget(window), defaultSize_(defaultSize), panel_(new QWidget(this)) {
    hide();
    setAttribute(Qt::WA_NoMousePropagation);
    setGeometry(window->rect());
    window->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*old*/, QWidget* now) { keepFocus(now); });
    slide_.setDuration(slideTime);
    slide_.setStartValue(0.0);
    slide_.setEndValue(1.0);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&slide_, &QVariantAnimation::valueChanged, this, [this](const QVariant& out) {
        out_ = out.toReal();
        placePanel();
    });
}

// The base classes take the focus away and would call this class, which is gone by then.
Sheet::~Sheet() { disconnect(qApp, nullptr, this, nullptr); }

void Sheet::beginSheet(QWidget* first) {
    focusBefore_ = window()->focusWidget();
    setGeometry(parentWidget()->rect());
    if (parentWidget()->isVisible() && style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0) {
        slide_.start();
    }
    raise();
    show();
    lastInside_ = first;
    first->setFocus();
    announceCovering();
}

void Sheet::endSheet() {
    slide_.stop();
    hide();
    announceCovering();
    if (focusBefore_ && focusBefore_->isVisible() && focusBefore_->isEnabled()) {
        focusBefore_->setFocus();
    }
}

bool Sheet::covers(const QWidget* widget) {
    const auto sheets = widget->window()->findChildren<Sheet*>(Qt::FindDirectChildrenOnly);
    return std::any_of(sheets.begin(), sheets.end(),
                       [widget](const Sheet* sheet) { return !sheet->isHidden() && !sheet->isAncestorOf(widget); });
}

// Assistive clients cache the state of the widgets behind.
void Sheet::announceCovering() const {
    if (!QAccessible::isActive()) {
        return;
    }
    QAccessible::State changed;
    changed.disabled = true;
    for (auto* widget : parentWidget()->findChildren<QWidget*>()) {
        const bool answers =
            qobject_cast<QAbstractButton*>(widget) != nullptr || qobject_cast<QAbstractItemView*>(widget) != nullptr;
        if (answers && !isAncestorOf(widget)) {
            QAccessibleStateChangeEvent event(widget, changed);
            QAccessible::updateAccessibility(&event);
        }
    }
}

// The panel scales with the text, and leaves a strip of the window visible.
void Sheet::placePanel() {
    const QSize room = size() - QSize(2 * minMargin, minMargin);
    const QSize wanted = QSize(look::scaled(defaultSize_.width()), look::scaled(defaultSize_.height())).boundedTo(room);
    const QRect before = panelWithShadow();
    panel_->setGeometry((width() - wanted.width()) / 2, qRound((out_ - 1) * wanted.height()), wanted.width(),
                        wanted.height());
    update(before.united(panelWithShadow()));
}

QRect Sheet::panelWithShadow() const {
    return panel_->geometry().adjusted(-shadowReach - 1, 0, shadowReach + 1, shadowReach + 1);
}

// Takes the focus back if other code gives it to a widget behind the sheet.
void Sheet::keepFocus(QWidget* now) {
    if (now == nullptr || isHidden() || now->window() != window()) {
        return;
    }
    if (isAncestorOf(now)) {
        lastInside_ = now;
    } else if (lastInside_) {
        lastInside_->setFocus();
    }
}

bool Sheet::focusNextPrevChild(bool next) {
    auto* const start = lastInside_ ? lastInside_.data() : this;
    const auto step = [next](QWidget* from) { return next ? from->nextInFocusChain() : from->previousInFocusChain(); };
    for (auto* widget = step(start); widget != start; widget = step(widget)) {
        if (isAncestorOf(widget) && takesTab(widget)) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            break;
        }
    }
    return true;
}

// Keeps the window's shortcuts from working, but for the one that does what the window's own close button still does.
bool Sheet::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && !isQuit(*static_cast<QKeyEvent*>(event), parentWidget())) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

// Does not pass keys on to the widgets behind.
void Sheet::keyPressEvent(QKeyEvent* event) {
    const bool closes =
        event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (closes && !event->isAutoRepeat()) {
        Q_EMIT closeRequested();
    }
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void Sheet::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placePanel();
}

void Sheet::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), QColor::fromRgba(look::sheetShade));
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape =
        QRectF(panel_->geometry()).adjusted(0, -cornerRadius - shadowReach, 0, 0);  // square at the edge
    drawShadow(painter, shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(look::row));
    painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
}

}  // namespace brimvault::ui
