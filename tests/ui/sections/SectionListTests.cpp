#include <fstream>

#include "support/WindowFixture.h"
#include "ui/services/DefaultsKeys.h"

using namespace brimvault;
using trial::Guide;

namespace {

constexpr int cachesRow = 0;
constexpr int logsRow = 2;
constexpr int downloadsRow = 3;

class SectionListTest : public tests::WindowFixture {
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
    EXPECT_EQ(subtitle(logsRow), QStringLiteral("Not scanned"));
    EXPECT_EQ(defaults_->number(ui::defaults_key::launchNumber), 1U);
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
    EXPECT_EQ(defaults_->number(ui::defaults_key::launchNumber), 2U);
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

}  // namespace
