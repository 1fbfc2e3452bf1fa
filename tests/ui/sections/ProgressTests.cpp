#include <gmock/gmock.h>

#include <QAccessible>
#include <QTest>

#include "engine/notification/Notifications.h"
#include "ui/controls/Announcer.h"
#include "ui/sections/SectionProgress.h"

using namespace brimvault;
using engine::Section;

namespace {

class SectionProgressTest : public testing::Test {
protected:
    static void report(Section section, engine::Number percent) {
        post(engine::vocabulary(section).scanProgress, {{engine::key::progressPercent, percent}});
    }
    static void finish(Section section) { post(engine::vocabulary(section).scanFinished, {}); }
    static void post(const QString& name, const engine::UserInfo& info) {
        engine::NotificationCenter::defaultCenter().post(name, info);
        QCoreApplication::processEvents();  // the model takes it in on the main thread
    }

    engine::DataMan model_;
    ui::ProgressIndicator indicator_{QStringLiteral("Scan progress"), nullptr};
    ui::SectionProgress::Sections sections_;
    ui::SectionProgress progress_{model_, indicator_, [this] { return sections_; }};
};

TEST_F(SectionProgressTest, IsTheMeanOfTheSectionsThatAreScanned) {
    sections_[Section::caches] = sections_[Section::logs] = true;
    indicator_.startAnimation();
    EXPECT_EQ(indicator_.percent(), 0);
    report(Section::caches, 50);
    EXPECT_EQ(indicator_.percent(), 25);
    report(Section::trash, 80);  // of no concern
    EXPECT_EQ(indicator_.percent(), 25);
    finish(Section::logs);
    EXPECT_EQ(indicator_.percent(), 75);
    report(Section::caches, 140);  // more than was expected
    EXPECT_EQ(indicator_.percent(), 100);
    indicator_.stopAnimation();
    report(Section::caches, 10);
    EXPECT_EQ(indicator_.percent(), 100) << "nothing goes on";
    indicator_.startAnimation();
    EXPECT_EQ(indicator_.percent(), 0);
}

TEST_F(SectionProgressTest, IsReadAsABar) {
    sections_[Section::caches] = true;
    auto* bar = QAccessible::queryAccessibleInterface(&indicator_);
    EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
    EXPECT_FALSE(bar->state().busy);
    indicator_.startAnimation();
    report(Section::caches, 30);
    EXPECT_TRUE(bar->state().busy);
    auto* value = bar->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toInt(), 30);
    EXPECT_EQ(value->minimumValue().toInt(), 0);
    EXPECT_EQ(value->maximumValue().toInt(), 100);
}

TEST_F(SectionProgressTest, ComesToItsEndWhateverWasNotToldOf) {
    sections_[Section::caches] = sections_[Section::trash] = true;
    indicator_.startAnimation();
    report(Section::caches, 40);
    progress_.complete();  // of the trash nothing was told: there was nothing in it
    EXPECT_EQ(indicator_.percent(), 100);
    indicator_.startAnimation();
    report(Section::caches, 40);
    indicator_.stopAnimation();
    progress_.complete();
    EXPECT_EQ(indicator_.percent(), 20) << "it was stopped before";
}

TEST(Announcer, TellsAtOnceThenNowAndThenAndAtLast) {
    int value = 0;
    QList<int> told;
    ui::Announcer announcer([&] { told.append(value); });
    for (value = 1; value <= 1000; ++value) {
        announcer.changed();
    }
    value = 1000;
    EXPECT_EQ(told, QList<int>{1});
    announcer.flush();  // as when nobody will hear of it later
    EXPECT_EQ(told, QList<int>({1, 1000}));
    announcer.flush();
    EXPECT_EQ(told.size(), 2) << "nothing is pending";
    told.removeLast();
    announcer.changed();
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 2; }));
    EXPECT_EQ(told, QList<int>({1, 1000}));
    constexpr int longerThanThePause = 400;
    QTest::qWait(longerThanThePause);
    EXPECT_EQ(told.size(), 2) << "nothing new";
}

}  // namespace
