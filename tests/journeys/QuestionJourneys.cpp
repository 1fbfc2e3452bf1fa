// The question of a clean, as it is shown and answered.

#include "support/WindowFixture.h"
#include "ui/controls/AlertWindow.h"

namespace brimvault::tests {

using namespace rows;

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
    alerts_.whileOpen = [this] { EXPECT_TRUE(window()->close()); };
    pressClean();
    EXPECT_FALSE(application_->pbCleanning());
    EXPECT_EQ(fingerprint(home_.path()), before);
}

}  // namespace brimvault::tests
