// What the program's menu offers, when, and what comes of it.

#include "support/WindowFixture.h"
#include "ui/window/AboutWC.h"

namespace brimvault::tests {

using namespace rows;
using ui::MenuAction;

class MenuJourney : public WindowFixture {
protected:
    [[nodiscard]] QMenu* menu() const { return application_->menu().menu(); }
    void perform(MenuAction what) const { application_->menu().perform(what); }
    /// What is offered from that place on begins so.
    void expectOffered(const char* titles, qsizetype from = 0) const {
        application_->menu().validateItems();
        const QStringList expected = QString::fromLatin1(titles).split(u", "_s);
        EXPECT_EQ(titlesOf(*menu()).mid(from, expected.size()), expected);
    }
    void selectFirstItem() const {
        ASSERT_TRUE(Guide::waitFor([this] { return guide_->list() != nullptr; }));
        guide_->clickCell(0, ItemListModel::nameColumn);
    }
    void pressShortcutOfClean() const {
        QTest::keyClick(window(), Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    }
};

TEST_F(MenuJourney, ItemsFollowWhatGoesOnAndWhatIsSelected) {
    home_.makeApplications();
    start(allScans());
    expectOffered(
        "Scan, (Clean), (Select All), (Languages to Keep), (Show in File Manager), (Show Information), (Remove...)");
    application_->setPbScanning(true);
    expectOffered("Stop Scanning, (Clean)");
    application_->setPbScanning(false);
    scan();
    selectFirstItem();
    expectOffered("Scan, Clean, Unselect All, (Languages to Keep), Show in File Manager, Show Information, Remove...");
    clickSection(languagesRow);
    selectFirstItem();
    expectOffered("Languages to Keep, Show in File Manager, Show Information, (Remove...)", 3);
    pressClean();
    expectOffered("(Scan), Stop Cleaning");
    awaitEndOfClean();
}

TEST_F(MenuJourney, ShortcutsDoWhatTheMenuOffersAndNothingElse) {
    start();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    pressShortcutOfClean();  // before the first scan there is nothing to clean
    EXPECT_TRUE(alerts_.asked.empty());
    QTest::keyClick(window(), Qt::Key_R, Qt::ControlModifier);
    awaitEndOfScan();
    QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(status().startsWith(u"Zero Bytes"_s));
    pressShortcutOfClean();
    EXPECT_TRUE(alerts_.asked.empty()) << "nothing is selected";
    QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
    pressShortcutOfClean();
    EXPECT_EQ(alerts_.asked.size(), 1U);
    QTest::keyClick(window(), Qt::Key_F10);
    EXPECT_TRUE(menu()->isVisible());
    menu()->close();
}

TEST_F(MenuJourney, TheQuestionOfACleanIsSwitchedOffAndOn) {
    const auto before = fingerprint(home_.path());
    startAndScan();
    const auto actions = menu()->actions();
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [](const auto* action) { return action->text() == u"Ask Before Cleaning"_s; });
    ASSERT_NE(found, actions.end());
    const auto isTicked = [&] {
        application_->menu().validateItems();
        return (*found)->isCheckable() && (*found)->isChecked();
    };
    EXPECT_TRUE(isTicked());
    alerts_.answers.push_back({ui::AlertAnswer::secondButton, true});
    Guide::click(lists()->pbtnClean());
    EXPECT_FALSE(application_->pbCleanning()) << "cancelled";
    EXPECT_FALSE(isTicked()) << "the question was told not to come again";
    perform(MenuAction::toggleAskBeforeCleaning);
    EXPECT_TRUE(isTicked());
    Guide::click(lists()->pbtnClean());
    EXPECT_EQ(alerts_.asked.size(), 2U);
    EXPECT_EQ(fingerprint(home_.path()), before);
    perform(MenuAction::toggleAskBeforeCleaning);
    EXPECT_EQ(defaults_->boolean(u"SuppressAlertShowAlertOnRemove"_s), true);
    Guide::click(lists()->pbtnClean());
    awaitEndOfClean();
    EXPECT_EQ(alerts_.asked.size(), 2U);
    EXPECT_FALSE(fs::exists(caches() / "com.vendor.photos"));
}

// Its title would not hold any more: what stopped a scan would start the next.
TEST_F(MenuJourney, ClosesWhenWhatItOffersChanges) {
    start();
    application_->setPbScanning(true);
    application_->menu().popUp();
    ASSERT_TRUE(menu()->isVisible());
    application_->setPbScanning(false);
    EXPECT_FALSE(menu()->isVisible());
    application_->menu().popUp();
    application_->willModalSheetBegin(nullptr);
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(MenuJourney, AMailIsBegunForTheMakersAndForFriends) {
    start();
    perform(MenuAction::sendFeedbackPressed);
    perform(MenuAction::shareByMail);
    ASSERT_TRUE(Guide::waitFor([this] { return workspace_.opened().size() == 2; }));
    auto mails = workspace_.opened();
    std::sort(mails.begin(), mails.end());  // they are begun side by side
    EXPECT_THAT(mails[0], testing::StartsWith("mailto:?SUBJECT=Brimvault&BODY=Brimvault%20frees%20disk%20space"));
    EXPECT_THAT(mails[0], testing::HasSubstr("%0D%0A%0D%0Ahttps%3A%2F%2F"));
    EXPECT_THAT(mails[1], testing::StartsWith("mailto:support@brimvault.example?SUBJECT=Send%20FeedBack.%20Brimvault&"
                                              "BODY=Thank%20you"));
    EXPECT_TRUE(alerts_.asked.empty());

    workspace_.opens = false;
    perform(MenuAction::sendFeedbackPressed);
    ASSERT_TRUE(Guide::waitFor([this] { return !alerts_.asked.empty(); }));
    EXPECT_TRUE(alerts_.asked.front().informativeText.contains(u"support@brimvault.example"_s));
}

TEST_F(MenuJourney, ThereIsOneAboutWindowAtATime) {
    start();
    perform(MenuAction::showAboutScreen);
    perform(MenuAction::showAboutScreen);
    const auto open = [this] { return window()->findChildren<ui::AboutWC*>(); };
    ASSERT_EQ(open().size(), 1);
    open().front()->close();
    perform(MenuAction::showAboutScreen);
    EXPECT_TRUE(Guide::waitFor([&] { return open().size() == 1; }));
    EXPECT_TRUE(open().front()->isVisible());
}

TEST_F(MenuJourney, TheStartIsCountedAndAnnouncedOnce) {
    for (const int run : {1, 2}) {
        start();
        EXPECT_EQ(defaults_->number(u"APP_launch_number"_s), quint64(run));
        EXPECT_TRUE(Guide::waitFor([&] { return workspace_.announced == run; }));
        quit();
    }
}

}  // namespace brimvault::tests
