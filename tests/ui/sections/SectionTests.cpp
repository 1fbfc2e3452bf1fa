// The sections: their ticks, kept from run to run, and how far the scan of those that are ticked has come.

#include <QAccessible>
#include <fstream>

#include "support/EventLoop.h"
#include "support/WindowFixture.h"
#include "ui/controls/Announcer.h"
#include "ui/sections/SectionProgress.h"

namespace brimvault::tests {

class SectionListTest : public WindowFixture {
protected:
    /// The rows, the ticked ones with a plus sign.
    [[nodiscard]] std::string shown() const {
        std::string rows;
        for (int row = 0; row < ui::sectionRowCount; ++row) {
            rows += sections()->model()->index(row, 0).data().toString().toStdString();
            rows += isSectionChecked(row) ? "+ " : "- ";
        }
        return rows;
    }
};

TEST_F(SectionListTest, AFirstRunTicksAllButDownloadsAndATickIsKeptForTheNextRun) {
    start();
    EXPECT_EQ(shown(), "Caches+ Language Resources+ Logs+ Downloads- Trash+ ");
    EXPECT_EQ(subtitle(logsRow), u"Not scanned"_s);
    EXPECT_EQ(defaults_->number(u"APP_launch_number"_s), 1U);
    EXPECT_TRUE(Guide::waitFor([this] { return workspace_.announced == 1; }));
    clickSectionCheck(downloadsRow);
    EXPECT_EQ(application_->psectController().selectedRow(), cachesRow) << "ticking does not select";
    sections()->setFocus();
    for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Space}) {
        QTest::keyClick(sections(), key);
    }
    EXPECT_EQ(application_->psectController().selectedRow(), logsRow);
    EXPECT_EQ(guide_->list(), nullptr) << "no list is made before the first scan";
    quit();
    start();
    EXPECT_EQ(shown(), "Caches+ Language Resources+ Logs- Downloads+ Trash+ ");
    EXPECT_EQ(defaults_->number(u"APP_launch_number"_s), 2U);
    EXPECT_TRUE(Guide::waitFor([this] { return workspace_.announced == 2; }));
}

TEST_F(SectionListTest, AStoredCheckOfAnotherKindGivesTheDefault) {
    std::ofstream(defaultsFile()) << "[General]\nkeyCacheCheck=perhaps\nkeyDwnsCheck=1\nkeyLogsCheck=0\n";
    start();
    EXPECT_EQ(shown(), "Caches+ Language Resources+ Logs- Downloads+ Trash+ ");
}

TEST_F(SectionListTest, AScanOfNothingOffersToTickEverything) {
    start();
    for (const int row : {0, 1, 2, 4}) {
        clickSectionCheck(row);
    }
    Guide::click(scanButton());
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_EQ(alerts_.asked[0].message, u"No category selected"_s);
    EXPECT_EQ(alerts_.asked[0].informativeText, u"You should select category to scan.\nSelect all and scan?"_s);
    EXPECT_EQ(alerts_.asked[0].suppression, ui::Alert::Suppression::notOffered);
    EXPECT_FALSE(application_->bScanStarted()) << "the question was cancelled";
    EXPECT_FALSE(isSectionChecked(cachesRow));

    alerts_.answers.push_back(agree);
    Guide::click(scanButton());
    EXPECT_TRUE(isSectionChecked(downloadsRow));
    EXPECT_EQ(defaults_->boolean(u"keyCacheCheck"_s), false) << "not saved until a box is clicked";
    awaitEndOfScan();
}

class SectionProgressTest : public testing::Test {
protected:
    static void report(Section section, engine::Number percent) {
        post(engine::vocabulary(section).scanProgress, {{engine::key::progressPercent, percent}});
    }
    static void post(const QString& name, const engine::UserInfo& info) {
        engine::NotificationCenter::defaultCenter().post(name, info);
        runPending();  // the model takes it in on the main thread
    }

    engine::DataMan model_;
    ui::ProgressIndicator indicator_{u"Scan progress"_s, nullptr};
    ui::SectionProgress::Sections sections_;
    ui::SectionProgress progress_{model_, indicator_, [this] { return sections_; }};
};

TEST_F(SectionProgressTest, IsTheMeanOfTheSectionsThatAreScanned) {
    sections_[Section::caches] = sections_[Section::logs] = true;
    auto* bar = QAccessible::queryAccessibleInterface(&indicator_);
    EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
    EXPECT_FALSE(bar->state().busy);
    indicator_.startAnimation();
    EXPECT_EQ(indicator_.percent(), 0);
    report(Section::caches, 50);
    report(Section::trash, 80);  // of no concern
    EXPECT_EQ(indicator_.percent(), 25);
    EXPECT_TRUE(bar->state().busy);
    const auto* value = bar->valueInterface();
    EXPECT_EQ(QList({value->minimumValue(), value->currentValue(), value->maximumValue()}), QVariantList({0, 25, 100}));
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

TEST(Announcer, TellsAtOnceThenNowAndThenAndAtLast) {
    int value = 0;
    QList<int> told;
    ui::Announcer announcer([&] { told.append(value); });
    for (value = 1; value < 1000; ++value) {
        announcer.changed();
    }
    EXPECT_THAT(told, testing::ElementsAre(1));
    announcer.flush();  // as when nobody will hear of it later
    announcer.flush();  // nothing is pending
    EXPECT_THAT(told, testing::ElementsAre(1, 1000));
    value = 2000;
    announcer.changed();
    EXPECT_TRUE(runUntil([&] { return told.size() == 3; }));
    int later = 0;
    ui::Announcer clock([&] { ++later; });
    clock.changed();
    clock.changed();  // told of when the other would have told something again
    EXPECT_TRUE(runUntil([&] { return later == 2; }));
    EXPECT_THAT(told, testing::ElementsAre(1, 1000, 2000));
}

}  // namespace brimvault::tests
