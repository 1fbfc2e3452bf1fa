// What the window is doing, which of its controls can be used meanwhile, and how often it is drawn.

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QScreen>

#include "support/EventLoop.h"
#include "support/SectionWork.h"
#include "support/WindowFixture.h"

namespace brimvault::tests {

using ui::Activity;

class ActivityTest : public WindowFixture {
protected:
    // What the user may press and tick, the two main buttons by the name that they have now.
    [[nodiscard]] QString usable() const {
        const auto isTickable = [](const QAbstractItemModel* model, int row) {
            return model->index(row, ui::CheckTableView::checkColumn).flags().testFlag(Qt::ItemIsUserCheckable);
        };
        const auto* clean = lists()->pbtnClean();
        const std::pair<QString, bool> controls[] = {
            {scanButton()->accessibleName(), scanButton()->isEnabled()},
            {clean->accessibleName(), clean->isEnabled()},
            {u"items"_s, lists()->pbtnInf()->isEnabled() && lists()->pbtnFinder()->isEnabled()},
            {u"all"_s, lists()->pbtnSelectAll()->isEnabled()},
            {u"sections"_s, isTickable(sections()->model(), 0)},
            {u"list"_s, isTickable(guide_->list()->model(), 0)},
            {u"languages"_s, isTickable(window()->pDrawer()->ptableView()->model(), 1)},
        };
        QStringList usable;
        for (const auto& [name, isUsable] : controls) {
            usable += isUsable ? QStringList(name) : QStringList();
        }
        return usable.join(u", "_s);
    }
    // What is said to be going on; nothing where the sizes are shown.
    [[nodiscard]] QString going() const {
        const QString text = status().section(u", "_s, -1);
        return text.startsWith(u"Selected of "_s) ? QString() : text;
    }
};

TEST_F(ActivityTest, TheControlsFollowItThroughAllItsTransitions) {
    auto oneByte = scans();
    oneByte.operations[engine::Section::caches] = [] {
        return std::make_shared<SuppliedScan>(engine::Section::caches, [](auto&) {
            auto item = engine::FFItem::initWithName("found", 1);
            item->setPpbDeletable(true);
            return engine::ItemArray{item};
        });
    };
    start(std::move(oneByte));
    scan();
    const auto free = u"Scan, Clean, items, all, sections, list, languages"_s;
    const struct {
        Activity activity;
        QString usable;
        QString going;
    } walk[] = {
        {Activity::idle, free, {}},
        {Activity::asking, free, {}},
        {Activity::idle, free, {}},
        {Activity::awaitingScan, u"Stop Scanning, list, languages"_s, {}},
        {Activity::scanning, u"Stop Scanning, list, languages"_s, {}},
        {Activity::idle, free, {}},
        {Activity::cleaning, u"Stop Cleaning"_s, u"Cleaning..."_s},
        {Activity::stoppingClean, u"Stop Cleaning"_s, u"Cleaning..."_s},
        {Activity::idle, free, u"Select files to clean"_s},
        {Activity::removing, u"items, languages"_s, u"Removing..."_s},
        {Activity::idle, free, {}},
    };
    for (const auto& step : walk) {
        application_->setActivity(step.activity);
        const auto number = static_cast<int>(step.activity);
        EXPECT_EQ(usable(), step.usable) << number;
        EXPECT_EQ(going(), step.going) << number;
        if (application_->pbCleanning() || application_->pbRemoving()) {
            Guide::click(lists()->plashka());
            EXPECT_EQ(going(), step.going) << number << ": a click on the panel changes nothing";
        }
        EXPECT_EQ(window()->sidebar()->pProgressScan()->isAnimated(), application_->pbScanning()) << number;
        EXPECT_EQ(lists()->pProgressClean()->isAnimated(), application_->pbCleanning()) << number;
    }
    application_->setPbScanning(true);
    application_->setPbCleanning(false);
    application_->setPbRemoving(false);
    EXPECT_TRUE(application_->sectionControllerIsScanOrRemoveProcessPerforming()) << "only what runs is ended";
    application_->setPbScanning(false);
    EXPECT_EQ(application_->activity(), Activity::idle);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(usable(), u"Scan, items, all, sections, list, languages"_s) << "nothing is selected";
}

TEST_F(ActivityTest, AWindowThatIsClosedMeanwhileGoesAtItsEnd) {
    for (const auto activity : {Activity::scanning, Activity::cleaning, Activity::removing}) {
        startAndScan();
        application_->setActivity(activity);
        EXPECT_FALSE(window()->close());
        EXPECT_FALSE(window()->isEnabled());
        EXPECT_EQ(application_->activity(), activity) << "it is still under way";
        EXPECT_EQ(status().endsWith(u"Removing, then closing..."_s), activity == Activity::removing);
        application_->setActivity(Activity::idle);
        EXPECT_EQ(application_->activity(), Activity::closed);
        EXPECT_FALSE(window()->isVisible());
        quit();
    }
}

/// Counts how often it is drawn, and how often in less room than its text needs.
class Counting final : public QLabel {
public:
    using QLabel::QLabel;
    int drawn = 0;
    int cut = 0;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        ++drawn;
        cut += width() < sizeHint().width() ? 1 : 0;
    }
};

TEST(MainWindowTest, IsDrawnAsOftenAsItsScreenShowsPicturesHoweverOftenItChanges) {
    ui::MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* bar = new QWidget(window.startPage());
    auto* layout = new QHBoxLayout(bar);
    auto* counting = new Counting(u"i"_s);
    layout->addWidget(counting);
    layout->addStretch(1);
    bar->resize(2000, 40);
    bar->show();
    ASSERT_TRUE(runUntil([&] { return counting->drawn > 0; }));

    constexpr int pictures = 20;
    counting->drawn = 0;
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(runUntil([&] {
        QMetaObject::invokeMethod(
            counting, [=] { counting->setText(counting->text() + u'i'); }, Qt::QueuedConnection);
        counting->update();
        return counting->drawn == pictures;
    }));
    EXPECT_EQ(counting->cut, 0) << "a text has its room in the frame that shows it";
    const auto shown = window.screen()->refreshRate() * static_cast<double>(clock.elapsed()) / 1000;
    EXPECT_LE(pictures, shown * 1.1 + 1);

    counting->update();
    EXPECT_TRUE(runUntil([&] { return counting->drawn > pictures; })) << "the last change";
}

}  // namespace brimvault::tests
