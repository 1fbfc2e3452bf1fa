#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QScreen>
#include <QTest>

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
    ASSERT_TRUE(QTest::qWaitFor([&] { return counting->drawn > 0; }));

    constexpr int milliseconds = 300;
    counting->drawn = 0;
    QElapsedTimer clock;
    clock.start();
    int changes = 0;
    while (!clock.hasExpired(milliseconds)) {
        counting->update();
        ++changes;
        QCoreApplication::processEvents();
    }
    const double pictures = window.screen()->refreshRate() * static_cast<double>(clock.elapsed()) / 1000;
    EXPECT_GT(changes, counting->drawn);
    EXPECT_GE(counting->drawn, 2);
    EXPECT_LE(counting->drawn, pictures * 1.1 + 1) << "of so many changes: " << changes;

    counting->drawn = 0;
    counting->update();
    EXPECT_TRUE(QTest::qWaitFor([&] { return counting->drawn > 0; })) << "the last change";
}

}  // namespace
