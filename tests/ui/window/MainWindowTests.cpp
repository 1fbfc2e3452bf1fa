#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QScreen>
#include <QTest>

#include "support/EventLoop.h"
#include "ui/window/MainWindow.h"

using namespace brimvault;

namespace {

/// Counts how often it is drawn.
class Counting final : public QWidget {
public:
    using QWidget::QWidget;
    int drawn = 0;

protected:
    void paintEvent(QPaintEvent* /*event*/) override { ++drawn; }
};

TEST(MainWindowTest, IsDrawnAsOftenAsItsScreenShowsPicturesHoweverOftenItChanges) {
    ui::MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* counting = new Counting(window.startPage());
    counting->resize(10, 10);
    counting->show();
    counting->raise();
    ASSERT_TRUE(tests::runUntil([&] { return counting->drawn > 0; }));

    constexpr int pictures = 20;
    counting->drawn = 0;
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(tests::runUntil([&] {
        counting->update();
        return counting->drawn == pictures;
    }));
    const auto shown = window.screen()->refreshRate() * static_cast<double>(clock.elapsed()) / 1000;
    EXPECT_LE(pictures, shown * 1.1 + 1);

    counting->update();
    EXPECT_TRUE(tests::runUntil([&] { return counting->drawn > pictures; })) << "the last change";
}

}  // namespace
