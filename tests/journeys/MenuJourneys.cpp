// What the program's menu offers, when, and what comes of it.

#include <QMenu>

#include "support/WindowFixture.h"
#include "ui/window/AboutWC.h"

namespace brimvault::tests {

using namespace trial;

using ui::MenuAction;

class MenuJourney : public WindowFixture {
protected:
    // The titles of what is offered, those that cannot be chosen in brackets.
    QStringList offered() {
        application_->menu().validateItems();
        QStringList titles;
        for (const auto* action : application_->menu().menu()->actions()) {
            if (!action->isSeparator() && action->menu() == nullptr) {
                titles.append(action->isEnabled() ? action->text() : QStringLiteral("(%1)").arg(action->text()));
            }
        }
        return titles.mid(0, titles.size() - 4);  // the question, feedback, about and quit are always there
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers) const { QTest::keyClick(window(), key, modifiers); }
    void selectFirstItem() const {
        ASSERT_TRUE(Guide::waitFor([this] { return guide_->list() != nullptr; }));
        guide_->clickCell(0, ui::ItemListModel::nameColumn);
    }
    void chooseOnlyCaches() const {
        for (const int row : {1, 2, 4}) {
            clickSectionCheck(row);
        }
    }
};

TEST_F(MenuJourney, ItemsFollowWhatGoesOnAndWhatIsSelected) {
    home_.makeApplications();
    start(allScans());
    const QStringList idle = {QStringLiteral("Scan"),
                              QStringLiteral("(Clean)"),
                              QStringLiteral("(Select All)"),
                              QStringLiteral("(Languages to Keep)"),
                              QStringLiteral("(Show in File Manager)"),
                              QStringLiteral("(Show Information)"),
                              QStringLiteral("(Remove...)")};
    EXPECT_EQ(offered(), idle);
    application_->setPbScanning(true);
    EXPECT_EQ(offered().mid(0, 2), (QStringList{QStringLiteral("Stop Scanning"), QStringLiteral("(Clean)")}));
    application_->setPbScanning(false);
    scan();
    selectFirstItem();
    EXPECT_EQ(offered(), (QStringList{QStringLiteral("Scan"), QStringLiteral("Clean"), QStringLiteral("Unselect All"),
                                      QStringLiteral("(Languages to Keep)"), QStringLiteral("Show in File Manager"),
                                      QStringLiteral("Show Information"), QStringLiteral("Remove...")}));
    clickSection(1);
    selectFirstItem();
    EXPECT_EQ(offered().mid(3),
              (QStringList{QStringLiteral("Languages to Keep"), QStringLiteral("Show in File Manager"),
                           QStringLiteral("Show Information"), QStringLiteral("(Remove...)")}));
    alerts_.answers.push_back(agree);
    Guide::click(lists()->pbtnClean());
    EXPECT_EQ(offered().mid(0, 2), (QStringList{QStringLiteral("(Scan)"), QStringLiteral("Stop Cleaning")}));
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
}

TEST_F(MenuJourney, ShortcutsDoWhatTheMenuOffersAndNothingElse) {
    start();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    chooseOnlyCaches();
    press(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);  // before the first scan there is nothing to clean
    EXPECT_TRUE(alerts_.asked.empty());
    press(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(application_->bScanStarted());
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning(); }));
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(status().startsWith(QStringLiteral("Zero Bytes")));
    press(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(alerts_.asked.empty()) << "nothing is selected";
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_EQ(alerts_.asked.front().message,
              QStringLiteral("Are you sure you want to  completely delete the selected items?"));
    press(Qt::Key_F10, Qt::NoModifier);
    EXPECT_TRUE(application_->menu().menu()->isVisible());
    application_->menu().menu()->close();
}

TEST_F(MenuJourney, TheQuestionOfACleanIsSwitchedOffAndOn) {
    start();
    scan();
    const auto* ask = [this] {
        const auto actions = application_->menu().menu()->actions();
        const auto found = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
            return action->text() == QStringLiteral("Ask Before Cleaning");
        });
        return found == actions.end() ? nullptr : *found;
    }();
    ASSERT_NE(ask, nullptr);
    const auto isTicked = [&] {
        application_->menu().validateItems();
        return ask->isCheckable() && ask->isChecked();
    };
    EXPECT_TRUE(isTicked());
    alerts_.answers.push_back({ui::AlertAnswer::secondButton, true});
    Guide::click(lists()->pbtnClean());
    EXPECT_FALSE(isTicked()) << "the question was told not to come again";
    application_->menu().perform(MenuAction::toggleAskBeforeCleaning);
    EXPECT_TRUE(isTicked());
    Guide::click(lists()->pbtnClean());
    EXPECT_EQ(alerts_.asked.size(), 2U);
    application_->menu().perform(MenuAction::toggleAskBeforeCleaning);
    EXPECT_EQ(defaults_->boolean(QStringLiteral("SuppressAlertShowAlertOnRemove")), true);
}

// Its title would not hold any more: what stopped a scan would start the next.
TEST_F(MenuJourney, ClosesWhenWhatItOffersChanges) {
    start();
    const auto* menu = application_->menu().menu();
    application_->setPbScanning(true);
    application_->menu().popUp();
    ASSERT_TRUE(menu->isVisible());
    application_->setPbScanning(false);
    EXPECT_FALSE(menu->isVisible());
    application_->menu().popUp();
    application_->willModalSheetBegin(nullptr);
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuJourney, AMailIsBegunForTheMakersAndForFriends) {
    start();
    application_->menu().perform(MenuAction::sendFeedbackPressed);
    application_->menu().perform(MenuAction::shareByMail);
    ASSERT_TRUE(Guide::waitFor([this] { return workspace_.opened().size() == 2; }));
    auto mails = workspace_.opened();
    std::sort(mails.begin(), mails.end());  // they are begun side by side
    EXPECT_THAT(mails[0], testing::StartsWith("mailto:?SUBJECT=Brimvault&BODY=Brimvault%20frees%20disk%20space"));
    EXPECT_THAT(mails[0], testing::HasSubstr("%0D%0A%0D%0Ahttps%3A%2F%2F"));
    EXPECT_THAT(mails[1], testing::StartsWith("mailto:support@brimvault.example?SUBJECT=Send%20FeedBack.%20Brimvault&"
                                              "BODY=Thank%20you"));
    EXPECT_TRUE(alerts_.asked.empty());

    workspace_.opens = false;
    application_->menu().perform(MenuAction::sendFeedbackPressed);
    ASSERT_TRUE(Guide::waitFor([this] { return !alerts_.asked.empty(); }));
    EXPECT_TRUE(alerts_.asked.front().informativeText.contains(QStringLiteral("support@brimvault.example")));
}

TEST_F(MenuJourney, ThereIsOneAboutWindowAtATime) {
    start();
    application_->menu().perform(MenuAction::showAboutScreen);
    application_->menu().perform(MenuAction::showAboutScreen);
    auto open = window()->findChildren<ui::AboutWC*>();
    ASSERT_EQ(open.size(), 1);
    open.front()->close();
    application_->menu().perform(MenuAction::showAboutScreen);
    EXPECT_TRUE(Guide::waitFor([this] { return window()->findChildren<ui::AboutWC*>().size() == 1; }));
    EXPECT_TRUE(window()->findChild<ui::AboutWC*>()->isVisible());
}

TEST_F(MenuJourney, TheStartIsCountedAndAnnouncedOnce) {
    start();
    EXPECT_TRUE(Guide::waitFor([this] { return workspace_.announced == 1; }));
    EXPECT_EQ(defaults_->number(QStringLiteral("APP_launch_number")), 1U);
    quit();
    start();
    EXPECT_EQ(defaults_->number(QStringLiteral("APP_launch_number")), 2U);
    EXPECT_TRUE(Guide::waitFor([this] { return workspace_.announced == 2; }));
}

}  // namespace brimvault::tests
