#include <gmock/gmock.h>

#include <QAccessible>

#include "engine/notification/Notifications.h"
#include "support/EventLoop.h"
#include "ui/controls/Announcer.h"
#include "ui/sections/SectionProgress.h"

using namespace brimvault;
using engine::Section;
using testing::ElementsAre;

namespace {

class SectionProgressTest : public testing::Test {
protected:
    static void report(Section section, engine::Number percent) {
        post(engine::vocabulary(section).scanProgress, {{engine::key::progressPercent, percent}});
    }
    static void post(const QString& name, const engine::UserInfo& info) {
        engine::NotificationCenter::defaultCenter().post(name, info);
        tests::runPending();  // the model takes it in on the main thread
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
    report(Section::trash, 80);  // of no concern
    EXPECT_EQ(indicator_.percent(), 25);
    post(engine::vocabulary(Section::logs).scanFinished, {});
    EXPECT_EQ(indicator_.percent(), 75);
    report(Section::caches, 140);  // more than was expected
    EXPECT_EQ(indicator_.percent(), 100);
    indicator_.startAnimation();
    report(Section::caches, 40);
    EXPECT_EQ(indicator_.percent(), 20) << "it began anew";
    progress_.complete();  // of the logs nothing was told: there were none
    EXPECT_EQ(indicator_.percent(), 100);
    indicator_.startAnimation();
    indicator_.stopAnimation();
    progress_.complete();
    report(Section::caches, 10);
    EXPECT_EQ(indicator_.percent(), 0) << "nothing goes on";
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

TEST(Announcer, TellsAtOnceThenNowAndThenAndAtLast) {
    int value = 0;
    QList<int> told;
    ui::Announcer announcer([&] { told.append(value); });
    for (value = 1; value < 1000; ++value) {
        announcer.changed();
    }
    EXPECT_THAT(told, ElementsAre(1));
    announcer.flush();  // as when nobody will hear of it later
    announcer.flush();  // nothing is pending
    EXPECT_THAT(told, ElementsAre(1, 1000));
    value = 2000;
    announcer.changed();
    EXPECT_TRUE(tests::runUntil([&] { return told.size() == 3; }));
    int later = 0;
    ui::Announcer clock([&] { ++later; });
    clock.changed();
    clock.changed();  // told of when the other would have told something again
    EXPECT_TRUE(tests::runUntil([&] { return later == 2; }));
    EXPECT_THAT(told, ElementsAre(1, 1000, 2000));
}

}  // namespace
