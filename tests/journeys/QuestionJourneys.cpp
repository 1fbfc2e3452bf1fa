// The question of a clean, as it is shown and answered.

#include <gmock/gmock.h>

#include "engine/model/FileSize.h"
#include "support/WindowFixture.h"
#include "ui/controls/AlertWindow.h"

using namespace brimvault;
using trial::Guide;

namespace {

QString text(const char* utf8) { return QString::fromUtf8(utf8); }

class QuestionJourney : public tests::WindowFixture {
protected:
    // Has the next question shown as it is, does something to it, and answers what came of that.
    template <typename Act>
    static ui::AlertAnswer answerOf(const ui::Alert& alert, QWidget* window, Act act) {
        QMetaObject::invokeMethod(
            qApp, [act] { act(*qobject_cast<ui::AlertWindow*>(QApplication::activeModalWidget())); },
            Qt::QueuedConnection);
        return ui::WindowAlerts().runModal(alert, window);
    }
    [[nodiscard]] ui::Alert questionOfAClean() {
        Guide::click(lists()->pbtnClean());
        return alerts_.asked.back();
    }
};

}  // namespace

TEST_F(QuestionJourney, TellsHowMuchGoesOfWhichSections) {
    start(allScans());
    scan();
    const auto all = questionOfAClean();
    EXPECT_EQ(all.message, text("Are you sure you want to  completely delete the selected items?"));
    EXPECT_EQ(all.informativeText, text("Files will be  permanently removed from your Hard Drive."));
    auto& model = application_->psectController().getAppResDS();
    const auto size = [](quint64 bytes) { return engine::FileSize::formatMemoryStringDot1(bytes); };
    const auto items = model.sums(engine::Section::caches).ticked + model.sums(engine::Section::logs).ticked +
                       model.sums(engine::Section::trash).ticked;
    EXPECT_GT(items, 20);
    EXPECT_EQ(all.facts.line(),
              text("%1 items, %2: Caches %3, Logs %4, Trash %5")
                  .arg(QString::number(items), size(model.getSize2CleanALLSel() - model.getSize2CleanDwnsSel()),
                       size(model.getSize2CleanCachesSel()), size(model.getSize2CleanLogsSel()),
                       size(model.getSize2CleanTrashSel())));

    // What is not ticked does not go, whatever lies in it.
    for (const int row : {0, 2}) {
        clickSectionCheck(row);
    }
    clickSection(4);
    Guide::click(lists()->pbtnSelectAll());
    guide_->clickCell(guide_->row(text("draft.doc")), ui::ItemListModel::checkColumn);
    const auto one = size(model.getSize2CleanTrashSel());
    EXPECT_EQ(questionOfAClean().facts.line(), text("1 item, %1: Trash %1").arg(one));
}

TEST_F(QuestionJourney, SaysOnItsButtonsWhatTheyDoAndDeletesOnlyWhenTold) {
    start();
    scan();
    const auto question = questionOfAClean();
    using Alert = ui::AlertWindow;
    const auto press = [](Qt::Key key) { return [key](Alert& alert) { QTest::keyClick(&alert, key); }; };
    EXPECT_EQ(answerOf(question, window(), press(Qt::Key_Return)).returnCode, ui::AlertAnswer::secondButton);
    EXPECT_EQ(answerOf(question, window(), press(Qt::Key_Escape)).returnCode, ui::AlertAnswer::secondButton);
    const auto answer = answerOf(question, window(), [&question](Alert& alert) {
        EXPECT_EQ(alert.firstButton()->text(), QStringLiteral("Delete"));
        EXPECT_EQ(alert.secondButton()->text(), QStringLiteral("Cancel"));
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
    const ui::Alert harmless{QStringLiteral("Scan?"), QStringLiteral("Everything")};
    EXPECT_EQ(answerOf(harmless, window(), press(Qt::Key_Return)).returnCode, ui::AlertAnswer::firstButton);
}
