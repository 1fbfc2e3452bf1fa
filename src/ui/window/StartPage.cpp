#include "ui/window/StartPage.h"

#include <QGridLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/PictureLabel.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

namespace {

constexpr int pageMargin = 9;
constexpr QMargins cornerMargins(18, 16, 18, 16);
constexpr int iconSide = 104;
constexpr int buttonWidth = 194;
constexpr qreal headlineSize = 24;
constexpr qreal descriptionSize = 14;
constexpr int descriptionLineHeight = 122;  // per cent
constexpr qreal hintSize = 12.5;

// Plain text with a line height in per cent of the font's own.
QString withLineHeight(const QString& text, int percent) {
    QString lines = text.toHtmlEscaped();
    lines.replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return QStringLiteral("<p style=\"line-height: %1%\">%2</p>").arg(percent).arg(lines);
}

}  // namespace

StartPage::StartPage(QWidget* parent)
    : QWidget(parent), layout_(new QGridLayout(this)), btnStartScanButton2_(new WhiteTitleButton) {
    layout_->setContentsMargins({});
    layout_->setSpacing(0);
    layout_->addLayout(makePage(), 0, 0);
}

QVBoxLayout* StartPage::makePage() {
    btnStartScanButton2_->setPictures(WhiteTitleButton::accent);
    btnStartScanButton2_->setTitle(tr("Start Scan"), tr("Start Scan"));
    btnStartScanButton2_->setMinimumWidth(look::scaled(buttonWidth));

    auto* headline =
        makeCentredLabel(tr("Free up disk space"), look::font(headlineSize, QFont::Bold), look::textPrimary);
    auto* description =
        makeCentredLabel(withLineHeight(tr("Caches, unneeded languages, logs, downloads and the trash:\n"
                                           "see what each one holds, tick what may go, and clean."),
                                        descriptionLineHeight),
                         look::font(descriptionSize), look::textSecondary);
    ptxtStartDescClean_ =
        makeCentredLabel(tr("Select sections and press Scan button"), look::font(hintSize), look::textSecondary);

    auto* page = new QVBoxLayout;
    page->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    page->setSpacing(0);
    page->addStretch(10);
    page->addWidget(new PictureLabel(QLatin1String("AppIcon"), look::scaled(iconSide)), 0, Qt::AlignHCenter);
    page->addSpacing(18);
    page->addWidget(headline);
    page->addSpacing(8);
    page->addWidget(description);
    page->addSpacing(22);
    page->addWidget(btnStartScanButton2_, 0, Qt::AlignHCenter);
    page->addSpacing(14);
    page->addWidget(ptxtStartDescClean_);
    page->addStretch(11);
    return page;
}

void StartPage::lodgeDrawer(QWidget* drawer, QAbstractButton* pbtnLangs) {
    auto* corner = new QHBoxLayout;
    corner->setContentsMargins(cornerMargins);
    corner->addWidget(pbtnLangs);
    layout_->addLayout(corner, 0, 0, Qt::AlignTop | Qt::AlignRight);
    layout_->addWidget(drawer, 0, 1);
}

void StartPage::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(look::row));
    const QSizeF size = ImageLoad::sizeOf(QLatin1String("centerPanelBg"));
    ImageLoad::draw(painter, {(width() - size.width()) / 2, (height() - size.height()) / 2},
                    QLatin1String("centerPanelBg"));
}

}  // namespace brimvault::ui
