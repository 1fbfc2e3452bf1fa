#include "ui/MainWindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QScreen>

#include "ui/ImageLoad.h"
#include "ui/Look.h"

namespace brimvault::ui {

namespace {

constexpr QSize usualSize(1000, 660);
constexpr QSize leastSize(860, 560);

}  // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent),
      sidebar_(new SidebarPanel),
      right_(new QStackedWidget),
      startPage_(new StartPage),
      lists_(new ListPanel),
      pDrawer_(new LanguagesDrawer),
      pbtnLangs_(new IconButton(QLatin1String("btnLangs"), tr("Languages"))) {
    setWindowTitle(QStringLiteral("Brimvault"));
    setAccessibleName(QStringLiteral("Brimvault"));
    QIcon icon(ImageLoad::LoadPNGImage(QLatin1String("AppIcon"), 1));
    icon.addPixmap(ImageLoad::LoadPNGImage(QLatin1String("AppIcon"), 2));
    setWindowIcon(icon);
    const QSize available = screen()->availableSize();
    setMinimumSize(leastSize.boundedTo(available));
    resize((usualSize * look::textScale()).boundedTo(available));
    pbtnLangs_->setPictureOn(QLatin1String("btnLangsOn"));
    startPage_->lodgeDrawer(pDrawer_, pbtnLangs_);
    right_->addWidget(startPage_);
    right_->addWidget(lists_);
    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(sidebar_);
    layout->addWidget(right_, 1);
    setCentralWidget(content);
}

void MainWindow::showLists() {
    if (right_->currentWidget() != lists_) {
        lists_->adoptDrawer(pDrawer_, pbtnLangs_);
        right_->setCurrentWidget(lists_);
    }
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    pDrawer_->fitWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) { event->setAccepted(!mayClose_ || mayClose_()); }

}  // namespace brimvault::ui
