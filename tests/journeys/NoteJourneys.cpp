// Items that carry a note: how they are ticked, what is asked before they go, and what goes of those that stand for
// several things.

#include <QAccessible>

#include "support/EventLoop.h"
#include "support/LogWriter.h"
#include "support/WindowFixture.h"

namespace brimvault::tests {

using engine::FFItem;
using engine::ItemNote;

class NoteJourney : public WindowFixture {
protected:
    void SetUp() override {
        startAndScan();
        items_ = {made("plain", 1), made("work", 2, ItemNote::work), made("models", 5, ItemNote::download, u"22 GB"_s),
                  made("shaders", 3, ItemNote::rebuild), made("mail", 4, ItemNote::offline)};
        list();
    }
    /// As a scan would have found it.
    [[nodiscard]] std::shared_ptr<FFItem> made(const std::string& name, quint64 size, ItemNote note = ItemNote::none,
                                               const QString& argument = {}) const {
        writeFile(caches() / name / "file", "12345");
        auto item = FFItem::initWithPath(caches() / name, size);
        item->setPpbDeletable(true);
        item->setPpbChecked(note == ItemNote::none);
        item->setNote(note);
        engine::ItemDetails details;
        details.noteArgument = argument;
        item->setDetails(std::move(details));
        return item;
    }
    /// One that stands for entries of two other folders.
    [[nodiscard]] std::shared_ptr<FFItem> standingForTwo(const std::string& name) const {
        auto item = made(name, 10, ItemNote::inUse);
        engine::ItemDetails details;
        details.noteArgument = u"Browser"_s;
        for (const char* folder : {"one", "two"}) {
            writeFile(home_.path() / folder / name / "file", "12345");
            details.targets.push_back(
                {std::make_shared<const engine::FoundIn>(engine::FoundIn{(home_.path() / folder).native() + "/"}),
                 {name}});
        }
        item->setDetails(std::move(details));
        return item;
    }
    void list() const {
        const auto words = engine::vocabulary(Section::caches);
        engine::NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, items_}});
        runPending();
    }
    [[nodiscard]] std::string ticked() const {
        std::string marks;
        for (const auto& item : items_) {
            marks += item->ppbChecked() ? '+' : '-';
        }
        return marks;
    }

    engine::ItemArray items_;
};

TEST_F(NoteJourney, ATickOfAllLeavesAloneWhatIsTickedByHandOnly) {
    EXPECT_EQ(ticked(), "+----");
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "+-+++");
    EXPECT_EQ(selectAllState(), Qt::Checked) << "the rest does not count while it is unticked";
    clickCheckOf(u"work"_s);
    EXPECT_EQ(ticked(), "+++++");
    clickCheckOf(u"plain"_s);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "+++++") << "nor is a tick by hand undone";
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "-----");
    clickCheckOf(u"work"_s);
    EXPECT_EQ(selectAllState(), Qt::PartiallyChecked);
}

TEST_F(NoteJourney, TheKeyboardTicksThemAndAssistiveClientsAreTold) {
    select(u"work"_s);
    auto* cells = QAccessible::queryAccessibleInterface(guide_->list())->tableInterface();
    const auto* name = cells->cellAt(guide_->row(u"work"_s), ItemListModel::nameColumn);
    EXPECT_EQ(name->text(QAccessible::Description), u"May hold work that exists nowhere else. Size: 2 B"_s);
    QTest::keyClick(guide_->list(), Qt::Key_Space);
    EXPECT_EQ(ticked(), "++---");
}

TEST_F(NoteJourney, ACleanAsksAboutThemEvenIfItIsToldNotToAsk) {
    defaults_->setBoolean(ui::defaults_key::suppressRemovalAlert, true);
    Guide::click(lists()->pbtnSelectAll());
    Guide::click(lists()->pbtnClean());
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_FALSE(application_->pbCleanning()) << "cancelled";
    EXPECT_EQ(alerts_.asked[0].suppression, ui::Alert::Suppression::notOffered);
    EXPECT_EQ(alerts_.asked[0].warning.text(),
              u"3 selected items carry a warning:\n"
              "models – Will be downloaded again: 22 GB\n"
              "mail – Holds content kept for use without a connection\n"
              "shaders – Takes long to make again"_s);
    clickCheckOf(u"work"_s);
    Guide::click(lists()->pbtnClean());
    EXPECT_EQ(alerts_.asked.back().warning.lines.first(), u"work – May hold work that exists nowhere else"_s)
        << "the most serious first, however small";
    EXPECT_EQ(alerts_.asked.back().warning.lines.last(), u"and 1 more"_s);
    for (const auto& name : {u"models"_s, u"mail"_s, u"shaders"_s, u"work"_s}) {
        clickCheckOf(name);
    }
    Guide::click(lists()->pbtnClean());
    awaitEndOfClean();
    EXPECT_EQ(alerts_.asked.size(), 2U);
    EXPECT_FALSE(fs::exists(caches() / "plain"));
    EXPECT_TRUE(fs::exists(caches() / "models"));
}

TEST_F(NoteJourney, ALogThatIsEmptiedIsToldOfAndGoesWithoutAWarning) {
    const auto log = made("log", 6, ItemNote::emptied, u"editor"_s);
    items_ = {log};
    list();
    const QString told = u"Is emptied, because editor still writes to it"_s;
    const auto name = guide_->list()->model()->index(guide_->row(u"log"_s), ItemListModel::nameColumn);
    EXPECT_TRUE(name.data(Qt::ToolTipRole).toString().contains(told));
    auto* cells = QAccessible::queryAccessibleInterface(guide_->list())->tableInterface();
    EXPECT_EQ(cells->cellAt(name.row(), ItemListModel::nameColumn)->text(QAccessible::Description),
              told + u". Size: 6 B"_s);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "+");
    Guide::click(lists()->pbtnClean());
    EXPECT_TRUE(alerts_.asked.back().warning.lines.isEmpty());
    EXPECT_EQ(alerts_.asked.back().suppression, ui::Alert::Suppression::offered);
    defaults_->setBoolean(ui::defaults_key::suppressRemovalAlert, true);
    Guide::click(lists()->pbtnClean());
    awaitEndOfClean();
    EXPECT_EQ(alerts_.asked.size(), 1U);
}

TEST_F(NoteJourney, WhatTheSystemAloneRemovesIsTickedAndRemovedInNoWay) {
    const auto kept = made("logs", 6, ItemNote::command, u"sudo tool"_s);
    kept->setPpbDeletable(false);
    items_ = {kept, items_[0]};
    list();
    clickCheckOf(u"logs"_s);
    EXPECT_EQ(ticked(), "-+");
    select(u"logs"_s);
    QTest::keyClick(guide_->list(), Qt::Key_Space);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.empty()) << "there is nothing to ask about";
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "--");
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(ticked(), "-+");
    EXPECT_EQ(selectAllState(), Qt::Checked);
    const auto name = guide_->list()->model()->index(guide_->row(u"logs"_s), ItemListModel::nameColumn);
    EXPECT_TRUE(name.data(Qt::ToolTipRole).toString().contains(u"Only the system removes it: sudo tool"_s));
    EXPECT_TRUE(fs::exists(caches() / "logs/file"));
}

// The row's menu does what a clean does.
TEST_F(NoteJourney, ASingleRemovalEmptiesALogThatIsWrittenTo) {
    const auto path = caches() / "folder/app.log";
    fs::create_directories(path.parent_path());
    const LogWriter writer(path);
    auto log = FFItem::initWithPath(path, 6);
    log->setFoundIn(std::make_shared<const engine::FoundIn>(engine::FoundIn{
                        path.parent_path().native() + "/", files::statusOf(path.parent_path())->identity}),
                    FFItem::FoundPathKind::folder);
    log->setIdentity(files::statusOf(path)->identity.digest());
    log->setNote(ItemNote::emptied);
    engine::ItemDetails details;
    details.isEmptiedWhileWritten = true;
    log->setDetails(std::move(details));
    log->setPpbDeletable(true);
    items_ = {log, items_[0]};
    list();
    select(u"app.log"_s);
    alerts_.answers.push_back(agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"app.log"_s) < 0; }));
    EXPECT_TRUE(alerts_.asked.back().warning.text().isEmpty());
    EXPECT_TRUE(alerts_.asked.back().informativeText.contains(u"Is emptied, because a program still writes to it"_s));
    EXPECT_TRUE(writer.writesOn());
    EXPECT_EQ(fs::file_size(path), LogWriter::line.size());
}

TEST_F(NoteJourney, OddNamesAreNeitherMarkupNorLinesNorLong) {
    const std::string odd = "<b>\n\u202Egnp";
    items_ = {made(odd + std::string(200, 'x') + "end", 1, ItemNote::inUse, u"a\nb\u202E"_s)};
    list();
    clickCheckOf(items_[0]->ppdisplayName());
    Guide::click(lists()->pbtnClean());
    const auto& warning = alerts_.asked.back().warning;
    EXPECT_EQ(warning.sum, u"1 selected item carries a warning:"_s);
    ASSERT_EQ(warning.lines.size(), 1);
    EXPECT_TRUE(warning.lines[0].startsWith(u"<b>\uFFFD\uFFFDgnp"_s)) << warning.lines[0].toStdString();
    EXPECT_TRUE(warning.lines[0].endsWith(u"xend – a\uFFFDb\uFFFD is running and uses it"_s));
    EXPECT_LT(warning.lines[0].size(), 90);
    ui::AlertWindow shown(alerts_.asked.back(), window());
    const auto labels = shown.findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
        return label->accessibleName() == warning.lines[0] && label->textFormat() == Qt::PlainText;
    }));
    EXPECT_TRUE(shown.accessibleDescription().contains(warning.lines[0])) << "assistive clients are told, too";
}

TEST_F(NoteJourney, ASingleRemovalSaysTheNoteAndTakesWhatTheItemStandsForAlone) {
    items_.append(standingForTwo("browser"));
    items_.append(FFItem::initWithPath(home_.path() / "two/browser/file", 1));
    items_.last()->setNote(ItemNote::login);
    list();
    select(u"browser"_s);
    alerts_.answers.push_back(agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"browser"_s) < 0; }));
    const auto& asked = alerts_.asked.back();
    EXPECT_EQ(asked.message, u"Are you sure you want to completely delete “browser”?"_s);
    EXPECT_EQ(asked.warning.text(),
              u"Browser is running and uses it\nAbout what goes with it:\n"
              "file – You may have to sign in again"_s);
    EXPECT_TRUE(asked.informativeText.startsWith(u"It stands for 2 files or folders:\n"_s +
                                                 shownPath(home_.path() / "one/browser")));
    EXPECT_FALSE(fs::exists(home_.path() / "one/browser") || fs::exists(home_.path() / "two/browser"));
    EXPECT_LT(guide_->row(u"file"_s), 0) << "what lay in it goes with it";
    EXPECT_TRUE(fs::exists(caches() / "browser/file")) << "what its path names";
}

TEST_F(NoteJourney, TheStatusPanelTellsWhatCleaningFreesWhereThatIsFarFromWhatIsSelected) {
    for (const Section section : engine::allSections) {
        const auto words = engine::vocabulary(section);
        engine::NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, engine::ItemArray()}});
    }
    items_ = {made("one", 50'000'000), made("other", 50'000'000)};
    for (const auto& item : items_) {
        item->setSpace({1'000'000, {{.device = 1, .inode = 2, .allocated = 10'300'000, .names = 1, .allNames = 2}}});
    }
    list();
    const auto told = [this] { return lists()->plashka()->toolTip(); };
    EXPECT_TRUE(told().startsWith(u"Cleaning frees 2 MB."_s)) << told().toStdString();
    engine::NotificationCenter::defaultCenter().post(engine::notification::scanFinished);
    EXPECT_TRUE(runUntil([&] { return told().startsWith(u"Cleaning frees 12.3 MB."_s); })) << told().toStdString();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(lists()->plashka())->text(QAccessible::Description), told());
    EXPECT_EQ(status(), u"100 MB, Selected of 100 MB"_s);
    clickCheckOf(u"one"_s);
    EXPECT_TRUE(told().startsWith(u"Cleaning frees 1 MB."_s)) << told().toStdString();
    clickCheckOf(u"other"_s);
    EXPECT_EQ(told(), QString());
}

}  // namespace brimvault::tests
