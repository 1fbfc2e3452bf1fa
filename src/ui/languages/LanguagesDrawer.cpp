#include "ui/languages/LanguagesDrawer.h"

#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/look/Look.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

namespace {

constexpr int drawerWidth = 252;
constexpr int defaultWindowWidth = 1000;
constexpr int slideTime = 200;  // milliseconds; too short to wait for
constexpr qreal titleSize = 14;
constexpr qreal noteSize = 11.5;
constexpr int textMargin = 15;
constexpr int textEndMargin = 6;  // small, so that the note fits on two lines

// Qt does not mirror contents margins.
QMargins margins(const QWidget* widget, int leading, int top, int trailing) {
    return widget->isRightToLeft() ? QMargins(trailing, top, leading, 0) : QMargins(leading, top, trailing, 0);
}

QLabel* makeText(const QString& text, const QFont& font, QRgb color) {
    auto* label = makeParagraph(text, font, color);
    label->setContentsMargins(margins(label, textMargin, 0, textEndMargin));
    return label;
}

}  // namespace

LanguagesDrawer::LanguagesDrawer(QWidget* parent)
    : QWidget(parent), content_(new QWidget(this)), ptableView_(new LanguagesTableView) {
    auto* layout = new QVBoxLayout(content_);
    layout->setContentsMargins(margins(this, 1, 16, 0));
    layout->setSpacing(0);
    layout->addWidget(makeText(tr("Languages to keep"), look::font(titleSize, QFont::DemiBold), look::textPrimary));
    layout->addSpacing(3);
    layout->addWidget(makeText(tr("Localizations in unchecked languages can be removed. English always stays."),
                               look::font(noteSize), look::textSecondary));
    layout->addSpacing(10);
    layout->addWidget(ptableView_, 1);
    connect(&slide_, &QVariantAnimation::valueChanged, this, [this](const QVariant& width) { slideTo(width.toInt()); });
    connect(&slide_, &QVariantAnimation::finished, this, &LanguagesDrawer::arrived);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    setFixedWidth(0);
    hide();
}

int LanguagesDrawer::fullWidth() const {
    return std::min(look::scaled(drawerWidth), window()->width() * drawerWidth / defaultWindowWidth);
}

void LanguagesDrawer::fitWindow() {
    if (open_ && slide_.state() != QAbstractAnimation::Running) {
        slideTo(fullWidth());
    }
}

// Starts from the present width: a drawer that is sliding turns around where it is.
void LanguagesDrawer::setOpen(bool open) {
    if (open == open_) {
        return;
    }
    open_ = open;
    slide_.stop();
    const int goal = open ? fullWidth() : 0;
    const bool seen = parentWidget() != nullptr && parentWidget()->isVisible();
    const bool animated = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (!seen || !animated) {
        slideTo(goal);
        arrived();
        return;
    }
    {
        const QSignalBlocker noValueYet(slide_);
        slide_.setDuration(slideTime);
        slide_.setStartValue(width());
        slide_.setEndValue(goal);
    }
    setVisible(true);
    slide_.start();
}

void LanguagesDrawer::slideTo(int width) {
    setFixedWidth(width);
    setVisible(width > 0);
}

void LanguagesDrawer::arrived() {
    if (open_) {
        slideTo(fullWidth());  // the window may have been resized meanwhile
    } else {
        Q_EMIT drawerDidClose();
    }
}

void LanguagesDrawer::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeRequested();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void LanguagesDrawer::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    content_->setGeometry(isRightToLeft() ? width() - fullWidth() : 0, 0, fullWidth(), height());
}

void LanguagesDrawer::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(look::drawer));
    painter.fillRect(QRect(isRightToLeft() ? width() - 1 : 0, 0, 1, height()), QColor(look::separator));
}

}  // namespace brimvault::ui
