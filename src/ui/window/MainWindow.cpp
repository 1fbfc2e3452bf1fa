#include "ui/window/MainWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QScreen>
#include <chrono>
#include <cmath>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr QSize usualSize(1000, 660);
constexpr QSize leastSize(860, 560);

// Without a screen, as with one that does not tell.
std::chrono::nanoseconds timeOfPicture(const QScreen* screen) {
    constexpr qreal usualRate = 60;
    const qreal rate = screen == nullptr ? 0 : screen->refreshRate();
    return std::chrono::nanoseconds(std::llround(1e9 / (rate > 1 ? rate : usualRate)));
}

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
    nextPicture_.setSingleShot(true);
    nextPicture_.setTimerType(Qt::PreciseTimer);
    connect(&nextPicture_, &QTimer::timeout, this,
            [this] { QCoreApplication::postEvent(this, new QEvent(QEvent::UpdateRequest), Qt::LowEventPriority); });
}

void MainWindow::showLists() {
    if (right_->currentWidget() != lists_) {
        lists_->adoptDrawer(pDrawer_, pbtnLangs_);
        right_->setCurrentWidget(lists_);
    }
}

// A scan changes something hundreds of times a second. Until a request is granted no other is made, and what has
// changed meanwhile is drawn with it.
bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::UpdateRequest) {
        if (!lastPicture_.hasExpired()) {
            nextPicture_.start(static_cast<int>(lastPicture_.remainingTime()));
            return true;
        }
        lastPicture_.setRemainingTime(timeOfPicture(screen()), Qt::PreciseTimer);
    }
    return QMainWindow::event(event);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    pDrawer_->fitWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) { event->setAccepted(!mayClose_ || mayClose_()); }

}  // namespace brimvault::ui
