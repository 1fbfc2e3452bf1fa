#include <gmock/gmock.h>

#include <fstream>

#include "support/WindowFixture.h"
#include "ui/services/DefaultsKeys.h"

using namespace brimvault;
using trial::Guide;

namespace {

constexpr int cachesRow = 0;
constexpr int logsRow = 2;
constexpr int downloadsRow = 3;

class SectionListTest : public tests::WindowFixture {};

TEST_F(SectionListTest, AFirstRunTicksAllButDownloads) {
    start();
    QStringList shown;
    for (int row = 0; row < ui::sectionRowCount; ++row) {
        shown.append(sections()->model()->index(row, 0).data().toString() +
                     (isSectionChecked(row) ? QStringLiteral("+") : QStringLiteral("-")));
        EXPECT_EQ(subtitle(row), QStringLiteral("Not scanned"));
    }
    EXPECT_EQ(shown.join(QLatin1Char(' ')), QStringLiteral("Caches+ Language Resources+ Logs+ Downloads- Trash+"));
    EXPECT_EQ(defaults_->number(ui::defaults_key::launchNumber), 1U);
}

TEST_F(SectionListTest, ATickIsKeptForTheNextRun) {
    start();
    clickSectionCheck(downloadsRow);
    clickSectionCheck(logsRow);
    EXPECT_EQ(application_->psectController().selectedRow(), cachesRow) << "ticking does not select";
    quit();
    start();
    EXPECT_TRUE(isSectionChecked(downloadsRow));
    EXPECT_FALSE(isSectionChecked(logsRow));
    EXPECT_EQ(defaults_->number(ui::defaults_key::launchNumber), 2U);
}

TEST_F(SectionListTest, AStoredCheckOfAnotherKindGivesTheDefault) {
    std::ofstream(defaultsFile()) << "[General]\nkeyCacheCheck=perhaps\nkeyDwnsCheck=1\nkeyLogsCheck=0\n";
    start();
    EXPECT_TRUE(isSectionChecked(cachesRow));
    EXPECT_TRUE(isSectionChecked(downloadsRow));
    EXPECT_FALSE(isSectionChecked(logsRow));
}

TEST_F(SectionListTest, TheSpaceBarTicksTheCurrentRow) {
    start();
    sections()->setFocus();
    QTest::keyClick(sections(), Qt::Key_Down);
    QTest::keyClick(sections(), Qt::Key_Down);
    QTest::keyClick(sections(), Qt::Key_Space);
    EXPECT_EQ(application_->psectController().selectedRow(), logsRow);
    EXPECT_FALSE(isSectionChecked(logsRow));
}

TEST_F(SectionListTest, AReleaseOutsideTheCheckBoxTicksNothing) {
    start();
    const auto index = sections()->model()->index(logsRow, 0);
    QTest::mousePress(sections()->viewport(), Qt::LeftButton, {}, sections()->checkRect(index).center());
    QTest::mouseRelease(sections()->viewport(), Qt::LeftButton, {}, sections()->visualRect(index).center());
    EXPECT_TRUE(isSectionChecked(logsRow));
}

TEST_F(SectionListTest, NoListIsMadeBeforeTheFirstScan) {
    start();
    clickSection(logsRow);
    clickSection(cachesRow);
    EXPECT_TRUE(window()->startPage()->isVisible());
    EXPECT_EQ(guide_->list(), nullptr);
}

TEST_F(SectionListTest, AScanOfNothingOffersToTickEverything) {
    start();
    for (const int row : {0, 1, 2, 4}) {
        clickSectionCheck(row);
    }
    Guide::click(scanButton());
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_EQ(alerts_.asked[0].message, QStringLiteral("No category selected"));
    EXPECT_EQ(alerts_.asked[0].suppression, ui::Alert::Suppression::notOffered);
    EXPECT_FALSE(application_->bScanStarted()) << "the question was cancelled";
    EXPECT_FALSE(isSectionChecked(cachesRow));

    alerts_.answers.push_back(tests::agree);
    Guide::click(scanButton());
    EXPECT_TRUE(isSectionChecked(downloadsRow));
    EXPECT_EQ(defaults_->boolean(QStringLiteral("keyCacheCheck")), false) << "not saved until a box is clicked";
    EXPECT_TRUE(Guide::waitFor([this] { return application_->bScanStarted() && !application_->pbScanning(); }));
}

TEST_F(SectionListTest, ASettingsFileThatIsGarbageIsKeptAside) {
    std::ofstream(defaultsFile()) << "not settings at all \x01\x02\n}}}{{{\n";
    start();
    EXPECT_TRUE(isSectionChecked(cachesRow));
    bool kept = false;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
        kept = kept || entry.path().filename().native().starts_with("defaults.ini.damaged-");
    }
    EXPECT_TRUE(kept);
}

}  // namespace
