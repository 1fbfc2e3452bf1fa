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

constexpr QSize defaultSize(1000, 660);
constexpr QSize minSize(860, 560);

// 60 Hz if the refresh rate is unknown.
std::chrono::nanoseconds frameTime(const QScreen* screen) {
    constexpr qreal defaultRate = 60;
    const qreal rate = screen == nullptr ? 0 : screen->refreshRate();
    return std::chrono::nanoseconds(std::llround(1e9 / (rate > 1 ? rate : defaultRate)));
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
    setMinimumSize(minSize.boundedTo(available));
    resize((defaultSize * look::textScale()).boundedTo(available));
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
    nextFrameTimer_.setSingleShot(true);
    nextFrameTimer_.setTimerType(Qt::PreciseTimer);
    connect(&nextFrameTimer_, &QTimer::timeout, this,
            [this] { QCoreApplication::postEvent(this, new QEvent(QEvent::UpdateRequest), Qt::LowEventPriority); });
}

void MainWindow::showLists() {
    if (right_->currentWidget() != lists_) {
        lists_->adoptDrawer(pDrawer_, pbtnLangs_);
        right_->setCurrentWidget(lists_);
    }
}

// Coalesces update requests to one per frame (refresh rate): a scan changes something hundreds of times a second. Qt
// makes no further request until this one is granted, and draws with it what has changed meanwhile. The layout of that
// may still be queued behind the request; without it a longer text would be drawn in the room of a shorter one.
bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::UpdateRequest) {
        if (!nextFrame_.hasExpired()) {
            nextFrameTimer_.start(static_cast<int>(nextFrame_.remainingTime()));
            return true;
        }
        nextFrame_.setRemainingTime(frameTime(screen()), Qt::PreciseTimer);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    return QMainWindow::event(event);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    pDrawer_->fitWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) { event->setAccepted(!mayClose_ || mayClose_()); }

}  // namespace brimvault::ui
