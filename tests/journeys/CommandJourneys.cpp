// What the menu offers and when, what comes of it, and the question of a clean.

#include "engine/notification/Notifications.h"
#include "support/FixtureTrees.h"
#include "support/HeardNotifications.h"
#include "support/WindowFixture.h"
#include "ui/controls/AlertWindow.h"
#include "ui/window/AboutWC.h"

namespace brimvault::tests {

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
    [[nodiscard]] bool isOn(const QString& title) const {
        application_->menu().validateItems();
        const auto actions = menu()->actions();
        return std::any_of(actions.begin(), actions.end(),
                           [&](const auto* action) { return action->text() == title && action->isChecked(); });
    }
    void pressShortcutOfClean() const {
        QTest::keyClick(window(), Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    }
};

TEST_F(MenuJourney, ItemsFollowWhatGoesOnAndWhatIsSelected) {
    home_.makeApplications();
    start(allScans());
    expectOffered(
        "Scan, (Clean), (Select All), (Languages to Keep), (Show in File Manager), (Show Information), (Move to "
        "Trash), "
        "(Remove...), (Undo Move to Trash)");
    application_->setPbScanning(true);
    expectOffered("Stop Scanning, (Clean)");
    application_->setPbScanning(false);
    scan();
    selectFirstItem();
    expectOffered(
        "Scan, Clean, Unselect All, (Languages to Keep), Show in File Manager, Show Information, (Move to Trash), "
        "Remove...");
    clickSection(languagesRow);
    selectFirstItem();
    expectOffered("Languages to Keep, Show in File Manager, Show Information, (Move to Trash), (Remove...)", 3);
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

TEST_F(MenuJourney, TheHistoryIsShownAndSwitchedOffAndOn) {
    startAndScan();
    const auto isTicked = [this] { return isOn(u"Keep a History"_s); };
    EXPECT_TRUE(isTicked());
    perform(MenuAction::showHistory);
    ASSERT_TRUE(Guide::waitFor([this] { return alerts_.asked.size() == 1; }));
    EXPECT_EQ(alerts_.asked.back().message, u"There is no history yet"_s);

    perform(MenuAction::toggleKeepHistory);
    EXPECT_FALSE(isTicked());
    EXPECT_EQ(defaults_->boolean(u"KeepHistory"_s), false);
    guide_->clickCell(guide_->row(u"com.vendor.photos"_s), ItemListModel::nameColumn);
    alerts_.answers.push_back(agree);
    perform(MenuAction::doSelRemove);
    ASSERT_TRUE(Guide::waitFor([this] { return !fs::exists(caches() / "com.vendor.photos"); }));
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbRemoving(); }));
    perform(MenuAction::toggleKeepHistory);
    const auto next = names().first();
    guide_->clickCell(0, ItemListModel::nameColumn);
    alerts_.answers.push_back(agree);
    perform(MenuAction::doSelRemove);
    ASSERT_TRUE(Guide::waitFor([&] { return names().first() != next && !application_->pbRemoving(); }));
    clean();
    EXPECT_TRUE(history_.waitUntilWritten());
    const auto written = contentOf(history_.file());
    EXPECT_THAT(written, testing::StartsWith("{\"time\":\"20"));
    EXPECT_THAT(written, testing::HasSubstr("\"section\":\"caches\",\"path\":\"" +
                                            (caches() / next.toStdString()).native() + '"'));
    EXPECT_THAT(written, testing::Not(testing::HasSubstr("com.vendor.photos")));
    EXPECT_GT(std::count(written.begin(), written.end(), '\n'), 2) << "the single removal, and the clean";

    perform(MenuAction::showHistory);
    ASSERT_TRUE(Guide::waitFor([this] { return !workspace_.opened().empty(); }));
    EXPECT_EQ(workspace_.opened().front(), "file://" + history_.file().native());
    quit();
    defaults_ = std::make_unique<platform::UserDefaults>(defaultsFile());
    EXPECT_EQ(defaults_->boolean(u"KeepHistory"_s), true);
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

class QuestionJourney : public WindowFixture {
protected:
    // Has the question shown as it is, does something to it, and answers what came of that.
    template <typename Act>
    [[nodiscard]] ui::AlertAnswer answerOf(const ui::Alert& alert, Act act) const {
        QMetaObject::invokeMethod(
            qApp, [act] { act(*qobject_cast<ui::AlertWindow*>(QApplication::activeModalWidget())); },
            Qt::QueuedConnection);
        return ui::WindowAlerts().runModal(alert, window());
    }
    [[nodiscard]] ui::Alert questionOfAClean() {
        Guide::click(lists()->pbtnClean());
        return alerts_.asked.back();
    }
};

TEST_F(QuestionJourney, TellsHowMuchGoesOfWhichSections) {
    startAndScan(allScans());
    const auto all = questionOfAClean();
    EXPECT_EQ(all.message, u"Are you sure you want to  completely delete the selected items?"_s);
    EXPECT_EQ(all.informativeText, u"Files will be  permanently removed from your Hard Drive."_s);
    const auto items =
        model().sums(Section::caches).ticked + model().sums(Section::logs).ticked + model().sums(Section::trash).ticked;
    EXPECT_GT(items, 20);
    EXPECT_EQ(all.facts.line(),
              u"%1 items, %2: Caches %3, Logs %4, Trash %5"_s.arg(
                  QString::number(items), sizeText(model().getSize2CleanALLSel() - model().getSize2CleanDwnsSel()),
                  sizeText(model().getSize2CleanCachesSel()), sizeText(model().getSize2CleanLogsSel()),
                  sizeText(model().getSize2CleanTrashSel())));

    // What is not ticked does not go, whatever lies in it.
    for (const int row : {cachesRow, logsRow}) {
        clickSectionCheck(row);
    }
    clickSection(trashRow);
    Guide::click(lists()->pbtnSelectAll());
    clickCheckOf(u"draft.doc"_s);
    EXPECT_EQ(questionOfAClean().facts.line(),
              u"1 item, %1: Trash %1"_s.arg(sizeText(model().getSize2CleanTrashSel())));
}

TEST_F(QuestionJourney, SaysOnItsButtonsWhatTheyDoAndDeletesOnlyWhenTold) {
    startAndScan();
    const auto question = questionOfAClean();
    using Alert = ui::AlertWindow;
    const auto press = [](Qt::Key key) { return [key](Alert& alert) { QTest::keyClick(&alert, key); }; };
    EXPECT_EQ(answerOf(question, press(Qt::Key_Return)).returnCode, ui::AlertAnswer::secondButton);
    EXPECT_EQ(answerOf(question, press(Qt::Key_Escape)).returnCode, ui::AlertAnswer::secondButton);
    const auto answer = answerOf(question, [&question](Alert& alert) {
        EXPECT_EQ(alert.firstButton()->text(), u"Delete"_s);
        EXPECT_EQ(alert.secondButton()->text(), u"Cancel"_s);
        EXPECT_TRUE(alert.secondButton()->isDefault() && alert.focusWidget() == alert.secondButton());
        EXPECT_TRUE(alert.accessibleDescription().contains(question.facts.line()));
        const QColor face = alert.firstButton()->grab().toImage().pixelColor(14, 14);
        EXPECT_GT(face.red(), 2 * face.green()) << "red";
        EXPECT_NE(alert.findChild<QCheckBox*>(), nullptr);
        Guide::click(alert.firstButton());
    });
    EXPECT_EQ(answer.returnCode, ui::AlertAnswer::firstButton);
    EXPECT_FALSE(answer.suppressed);

    // A question that deletes nothing goes on with the return key.
    const ui::Alert harmless{u"Scan?"_s, u"Everything"_s};
    EXPECT_EQ(answerOf(harmless, press(Qt::Key_Return)).returnCode, ui::AlertAnswer::firstButton);
}

TEST_F(QuestionJourney, NothingGoesWhoseWindowIsClosedUnderIt) {
    startAndScan();
    const auto before = fingerprint(home_.path());
    const HeardNotifications heard = {engine::notification::cleanFinished};
    alerts_.whileOpen = [this] { EXPECT_TRUE(window()->close()); };
    pressClean();
    quit();  // which waits for a clean
    EXPECT_EQ(heard.names(), QStringList());
    EXPECT_EQ(fingerprint(home_.path()), before);
}

}  // namespace brimvault::tests
