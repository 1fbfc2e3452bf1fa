#include "ui/window/AboutWC.h"

#include <QPainter>
#include <QVBoxLayout>

#include "ui/controls/WhiteTitleButton.h"
#include "ui/look/Look.h"
#include "ui/look/PictureLabel.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

namespace {

constexpr QMargins margins(32, 28, 32, 24);
constexpr int iconSide = 96;
constexpr int textWidth = 300;
constexpr qreal nameSize = 20;
constexpr qreal textSize = 13;
constexpr qreal smallSize = 12;

QLabel* centred(const QString& text, const QFont& font, QRgb color) {
    auto* label = makeCentredLabel(text, font, color);
    label->setMinimumWidth(look::scaled(textWidth));
    return label;
}

}  // namespace

AboutWC::AboutWC(QWidget* parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("About Brimvault"));
    auto* version =
        centred(tr("Version %1").arg(QStringLiteral(BRIMVAULT_VERSION)), look::font(textSize), look::textSecondary);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* address = centred(productPage(), look::font(smallSize), look::textSecondary);
    address->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* close = WhiteTitleButton::makeClose(textSize);
    connect(close, &QAbstractButton::clicked, this, &QDialog::close);

    auto* content = new QVBoxLayout(this);
    content->setContentsMargins(margins);
    content->setSpacing(0);
    content->setSizeConstraint(QLayout::SetFixedSize);
    content->addWidget(new PictureLabel(QLatin1String("AppIcon"), look::scaled(iconSide)), 0, Qt::AlignHCenter);
    content->addSpacing(10);
    content->addWidget(centred(QStringLiteral("Brimvault"), look::font(nameSize, QFont::Bold), look::textPrimary));
    content->addSpacing(2);
    content->addWidget(version);
    content->addSpacing(14);
    content->addWidget(centred(tr("Frees disk space: it shows what your caches, unneeded languages, logs, downloads "
                                  "and trash hold, and removes what you tick."),
                               look::font(textSize), look::textPrimary));
    content->addSpacing(12);
    content->addWidget(address);
    content->addSpacing(20);
    content->addWidget(close, 0, Qt::AlignHCenter);
    close->setDefault(true);
    close->setFocus();
}

void AboutWC::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(look::row));
}

}  // namespace brimvault::ui
