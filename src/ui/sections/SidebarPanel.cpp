#include "ui/sections/SidebarPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/look/Look.h"
#include "ui/look/PictureLabel.h"
#include "ui/sections/SectionRowDelegate.h"

namespace brimvault::ui {

namespace {

constexpr int iconSide = 34;
constexpr int nameGap = 10;
constexpr qreal nameSize = 17;
constexpr QMargins nameMargins(8, 18, 2, 14);
// The cards of the section list and the button keep room for their shadows.
constexpr QMargins panelMargins(10, 0, 11, 12);

}  // namespace

SidebarPanel::SidebarPanel(QWidget* parent)
    : QWidget(parent),
      pbtnMenu_(new IconButton(QLatin1String("btnMenu"), tr("Menu"))),
      sections_(new SectionsTableView),
      pbtnScan_(new WhiteTitleButton),
      pProgressScan_(pbtnScan_->addIndicator(tr("Scan progress"))) {
    setFixedWidth(look::scaled(look::sidebarWidth));
    sections_->setItemDelegate(new SectionRowDelegate(sections_));
    auto* name = new QLabel(QStringLiteral("Brimvault"));
    name->setFont(look::font(nameSize, QFont::Bold));

    auto* title = new QHBoxLayout;
    title->setContentsMargins(nameMargins);
    title->setSpacing(nameGap);
    title->addWidget(new PictureLabel(QLatin1String("AppIcon"), look::scaled(iconSide)));
    title->addWidget(name);
    title->addStretch(1);
    title->addWidget(pbtnMenu_);

    auto* panel = new QVBoxLayout(this);
    panel->setContentsMargins(panelMargins);
    panel->setSpacing(0);
    panel->addLayout(title);
    panel->addWidget(sections_, 1);
    panel->addWidget(pbtnScan_);
}

void SidebarPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QLinearGradient ground(rect().topLeft(), rect().bottomLeft());
    ground.setColorAt(0, QColor(look::sidebarTop));
    ground.setColorAt(1, QColor(look::sidebarBottom));
    painter.fillRect(rect(), ground);
    const int edge = isRightToLeft() ? 0 : width() - 1;
    painter.fillRect(QRect(edge, 0, 1, height()), QColor(look::separator));
}

}  // namespace brimvault::ui
