// The lists of files: their orders, what is asked for of a row, and what is removed singly.

#include <sys/stat.h>

#include "support/HeardNotifications.h"
#include "support/WindowFixture.h"
#include "ui/services/InfoWindow.h"

namespace brimvault::tests {

class ListJourney : public WindowFixture {
protected:
    void SetUp() override {
        start(allScans());
        clickSectionCheck(downloadsRow);
        scan();
    }
    [[nodiscard]] static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// The menu that a right click on the row opens; null when none does.
    [[nodiscard]] QMenu* menuOf(const QString& name) const {
        auto* viewport = guide_->list()->viewport();
        const QPoint place = guide_->list()->visualRect(cell(name, ItemListModel::nameColumn)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
        QApplication::sendEvent(viewport, &event);
        return openMenu();
    }
    /// Agrees to the removal of the selected row; whether the row goes.
    [[nodiscard]] bool isRemovedSingly(const QString& name) {
        select(name);
        alerts_.answers.push_back(agree);
        QTest::keyClick(guide_->list(), Qt::Key_Delete);
        return Guide::waitFor([&] { return guide_->row(name) < 0; });
    }
    [[nodiscard]] bool wasAsked(const std::string& request) const {
        return Guide::waitFor([&] { return !fileBrowser_.asked().empty() && fileBrowser_.asked().back() == request; });
    }
    /// The number of questions so far.
    [[nodiscard]] bool comesTo(std::size_t questions) const {
        return Guide::waitFor([&] { return alerts_.asked.size() == questions; });
    }
};

TEST_F(ListJourney, EachClickOnAHeaderAndEachDigitTurnsTheOrderRound) {
    auto* list = show(trashRow);
    const auto* header = list->horizontalHeader();
    const auto fromA = u"draft.doc, holiday.jpg, old project"_s;
    const auto fromZ = u"old project, holiday.jpg, draft.doc"_s;
    const auto largestFirst = u"old project, draft.doc, holiday.jpg"_s;
    const auto order = [this] { return names().join(u", "_s); };
    const std::pair<int, QString> clicks[] = {{ItemListModel::nameColumn, fromZ},
                                              {ItemListModel::iconColumn, fromZ},
                                              {ItemListModel::nameColumn, fromA},
                                              {ItemListModel::sizeColumn, largestFirst},
                                              {ItemListModel::sizeColumn, u"holiday.jpg, draft.doc, old project"_s}};
    for (const auto& [column, expected] : clicks) {
        guide_->clickHeader(column);
        EXPECT_EQ(order(), expected);
        EXPECT_NE(header->sortIndicatorSection(), ItemListModel::iconColumn) << "pictures have no order";
    }
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);

    QTest::keyClick(list, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(order(), fromA);
    QTest::keyClick(list, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(order(), largestFirst);
    EXPECT_TRUE(list->sortAction(ItemListModel::sizeColumn)->isChecked()) << "as the row's menu shows";
}

TEST_F(ListJourney, ShowsTheFileOfARowAndWithoutARowTheFolderOfTheSection) {
    fs::remove_all(home_.library() / "Logs");  // its neighbours hold logs too
    const struct {
        Row row;
        fs::path folder;
        QString name;
        fs::path path;
    } cases[] = {
        {cachesRow, home_.caches(), u"com.vendor.photos"_s, home_.caches() / "com.vendor.photos"},
        {logsRow, home_.library() / "Application Support/CrashReporter", u"com.vendor.reader"_s,
         home_.containers() / "com.vendor.reader/Data/Library/Logs"},
        {downloadsRow, home_.downloads(), u"photos.zip"_s, home_.downloads() / "photos.zip"},
        {trashRow, home_.trash(), u"draft.doc"_s, home_.trash() / "draft.doc"},
        {languagesRow, folder_ / "root/Applications", {}, {}},
    };
    for (const auto& [row, folder, name, path] : cases) {
        SCOPED_TRACE(folder);
        fs::create_directories(folder);
        show(row);
        Guide::click(lists()->pbtnFinder());
        EXPECT_TRUE(wasAsked("folder " + folder.native()));
        Guide::click(lists()->pbtnInf());
        EXPECT_TRUE(wasAsked("properties " + folder.native()));
        if (!name.isEmpty()) {
            EXPECT_TRUE(cell(name, 0).data(Qt::ToolTipRole).toString().contains(shownPath(path)));
            select(name);
            Guide::click(lists()->pbtnFinder());
            EXPECT_TRUE(wasAsked("item " + path.native()));
            Guide::click(lists()->pbtnInf());
            EXPECT_TRUE(wasAsked("properties " + path.native()));
        }
    }
    const auto asked = fileBrowser_.asked().size();
    application_->menu().perform(ui::MenuAction::doSelShowInFinder);
    application_->menu().perform(ui::MenuAction::doSelGetInfo);
    fs::remove_all(home_.downloads());
    show(downloadsRow)->clearSelection();
    Guide::click(lists()->pbtnFinder());
    ASSERT_TRUE(comesTo(1));
    EXPECT_EQ(alerts_.asked.back().message, u"Can't find file"_s);
    EXPECT_EQ(fileBrowser_.asked().size(), asked) << "the menu's commands need a row";
}

TEST_F(ListJourney, ARightClickSelectsItsRowAndOffersWhatCanBeDone) {
    show(downloadsRow);
    select(u"invoice.txt"_s);
    auto* menu = menuOf(u"photos.zip"_s);
    ASSERT_TRUE(menu);
    EXPECT_EQ(selected(), u"photos.zip"_s);
    EXPECT_EQ(titlesOf(*menu).join(u", "_s),
              u"Show in File Manager, Show Information, Move to Trash, Remove..., Sort By"_s);
    menu->close();
    menu->actions().first()->trigger();
    EXPECT_TRUE(wasAsked("item " + (home_.downloads() / "photos.zip").native()));

    application_->setPbCleanning(true);
    menu = menuOf(u"photos.zip"_s);
    ASSERT_TRUE(menu);
    EXPECT_EQ(titlesOf(*menu).join(u", "_s),
              u"Show in File Manager, Show Information, (Move to Trash), (Remove...), Sort By"_s);
    menu->close();
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.empty());
    application_->setPbCleanning(false);
}

TEST_F(ListJourney, FallsBackWhereNoFileBrowserAnswers) {
    fileBrowser_.answers = false;
    ASSERT_EQ(::chmod((home_.downloads() / "invoice.txt").c_str(), 04751), 0);
    show(downloadsRow);
    select(u"invoice.txt"_s);
    Guide::click(lists()->pbtnFinder());
    EXPECT_TRUE(wasAsked("folder " + home_.downloads().native()));
    EXPECT_TRUE(alerts_.asked.empty());

    const auto information = [this] { return window()->findChild<ui::InfoWindow*>(); };
    const auto says = [this](const QString& fact) {
        const auto labels = window()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->accessibleName() == fact; });
    };
    const auto expectInformation = [&](Row row, const QString& name, const QStringList& facts) {
        show(row);
        select(name);
        Guide::click(lists()->pbtnInf());
        for (const auto& fact : facts) {
            EXPECT_TRUE(Guide::waitFor([&] { return says(fact); })) << fact.toStdString();
        }
        ASSERT_NE(information(), nullptr);
        QTest::keyClick(information(), Qt::Key_Escape);
        EXPECT_TRUE(Guide::waitFor([&] { return information() == nullptr; }));
    };
    const auto deleted = QLocale().toString(QDateTime(QDate(2024, 5, 1), QTime(12, 0)), QLocale::LongFormat);
    const auto origin = shownPath(home_.path() / "Desktop/old project");
    fileBrowser_.answers = true;  // and yet it does not know where the item was
    expectInformation(trashRow, u"old project"_s,
                      {u"Kind: Folder"_s, u"Size: 100 MB (100,000,000 bytes)"_s, u"Original place: "_s + origin,
                       u"Deleted: "_s + deleted});
    fileBrowser_.answers = false;
    const auto tooltip = cell(u"old project"_s, 0).data(Qt::ToolTipRole).toString();
    EXPECT_TRUE(tooltip.contains(u"From "_s + origin) && tooltip.contains(u"Deleted on "_s + deleted));
    expectInformation(
        downloadsRow, u"invoice.txt"_s,
        {u"Where: "_s + shownPath(home_.downloads()), u"Size: 12 B (12 bytes)"_s, u"Permissions: rwsr-x--x (4751)"_s});

    fileBrowser_.opens = false;
    Guide::click(lists()->pbtnFinder());
    ASSERT_TRUE(comesTo(1));
    EXPECT_EQ(alerts_.asked.back().message, u"Can't show file"_s);
}

TEST_F(ListJourney, TellsOfAFileThatIsNoLongerThere) {
    show(downloadsRow);
    select(u"invoice.txt"_s);
    const fs::path file = home_.downloads() / "invoice.txt";
    fs::remove(file);
    for (auto* button : {lists()->pbtnFinder(), lists()->pbtnInf()}) {
        alerts_.asked.clear();
        Guide::click(button);
        ASSERT_TRUE(comesTo(1));
        EXPECT_EQ(alerts_.asked.back().message, u"Can't find file"_s);
        EXPECT_EQ(alerts_.asked.back().informativeText,
                  u"The file’s \"%1\" does not exist or its existence could not be determined"_s.arg(shownPath(file)));
        EXPECT_EQ(alerts_.asked.back().buttons, ui::Alert::Buttons::takeNote);
    }
    EXPECT_TRUE(fileBrowser_.asked().empty());
}

TEST_F(ListJourney, DeleteAsksAndRemovesOneItem) {
    const HeardNotifications heard = {engine::notification::singleFileRemoveFinished};
    show(trashRow);
    select(u"old project"_s);
    const auto others = fingerprint(home_.path(), {".local/share/Trash"});
    QTest::keyClick(guide_->list(), Qt::Key_Delete);  // answered with no
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_TRUE(alerts_.asked.back().message.contains(u"old project"_s));
    EXPECT_EQ(alerts_.asked.back().buttons, ui::Alert::Buttons::deleteAndCancel);
    EXPECT_FALSE(application_->pbRemoving());
    EXPECT_EQ(remover_.timesLet, 0);

    alerts_.answers.push_back(agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(application_->pbRemoving());
    EXPECT_EQ(remover_.timesLet, 1) << "a password may be asked for";
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"old project"_s) < 0; }));
    EXPECT_EQ(names(), QStringList({u"draft.doc"_s, u"holiday.jpg"_s}));
    EXPECT_EQ(selected(), u"holiday.jpg"_s);
    EXPECT_FALSE(fs::exists(home_.desktopTrash() / "files/old project"));
    EXPECT_FALSE(fs::exists(home_.desktopTrash() / "info/old project.trashinfo"));
    EXPECT_TRUE(fs::exists(home_.desktopTrash() / "info/holiday.jpg.trashinfo"));
    EXPECT_EQ(fingerprint(home_.path(), {".local/share/Trash"}), others);
    EXPECT_EQ(engine::getNumberPropfromNotification(heard.all().back(), engine::key::success), 1);
}

TEST_F(ListJourney, AFailedRemovalIsToldAndChangesNothing) {
    const HeardNotifications heard = {engine::notification::singleFileRemoveFinished};
    show(downloadsRow);
    select(u"photos.zip"_s);
    // The folder has become a link: what is reached through it is not what was listed.
    fs::rename(home_.downloads(), home_.path() / "Elsewhere");
    fs::create_directory_symlink("Elsewhere", home_.downloads());
    alerts_.answers.push_back(agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_TRUE(Guide::waitFor([&] { return !application_->pbRemoving(); }));
    ASSERT_EQ(alerts_.asked.size(), 2U);
    EXPECT_EQ(alerts_.asked.back().message, u"“photos.zip” could not be removed"_s);
    EXPECT_FALSE(alerts_.asked.back().informativeText.isEmpty());
    EXPECT_TRUE(fs::exists(home_.path() / "Elsewhere/photos.zip"));
    EXPECT_GE(guide_->row(u"photos.zip"_s), 0);
    EXPECT_EQ(engine::getNumberPropfromNotification(heard.all().back(), engine::key::success), 0);

    // The end of a removal is heard, also when the list that asked for it has gone.
    application_->setPbRemoving(true);
    auto& center = engine::NotificationCenter::defaultCenter();
    center.post(engine::notification::singleFileRemoveFinished, {{engine::key::success, engine::ItemArray()}});
    QCoreApplication::processEvents();
    EXPECT_TRUE(application_->pbRemoving());
    center.post(engine::notification::singleFileRemoveFinished, {{engine::key::success, engine::Number{1}}});
    EXPECT_TRUE(Guide::waitFor([&] { return !application_->pbRemoving(); }));
}

TEST_F(ListJourney, NothingBeginsWhileAQuestionIsOpenAndNothingElseIsRemovedThanWasAsked) {
    show(downloadsRow);
    EXPECT_EQ(subtitle(downloadsRow), u"0 B of 621 MB Selected"_s);
    alerts_.whileOpen = [this] {
        application_->psectController().doStartScan();
        application_->psectController().doStartClean();
        EXPECT_FALSE(application_->pbScanning() || application_->pbCleanning());
        EXPECT_EQ(alerts_.asked.size(), 1U);
        select(u"invoice.txt"_s);
    };
    EXPECT_TRUE(isRemovedSingly(u"photos.zip"_s));
    EXPECT_FALSE(fs::exists(home_.downloads() / "photos.zip"));
    EXPECT_TRUE(fs::exists(home_.downloads() / "invoice.txt"));
}

TEST_F(ListJourney, WhatLiesInARemovedFolderLeavesTheListWithIt) {
    show(logsRow);
    clickCheckOf(u"reader.log"_s);
    EXPECT_TRUE(isRemovedSingly(u"com.vendor.reader"_s));
    EXPECT_TRUE(alerts_.asked.back().informativeText.contains(u"It holds 1 other item"_s));
    EXPECT_EQ(names().join(u", "_s),
              u"backup 2.log, backup 10.log, com.vendor.browser, editor_2024.crash, system.log"_s);
}

// The reader's logs are listed one by one and as a whole.
TEST_F(ListJourney, AFolderThatHoldsOtherRowsIsTickedWithThemAndUntickedWithAnyOfThem) {
    const auto whole = u"com.vendor.reader"_s;
    const auto part = u"reader.log"_s;
    auto* list = show(logsRow);
    Guide::click(lists()->pbtnSelectAll());
    ASSERT_EQ(selectAllState(), Qt::Unchecked);
    clickCheckOf(whole);
    EXPECT_TRUE(isChecked(whole));
    EXPECT_TRUE(isChecked(part));
    EXPECT_FALSE(isChecked(u"system.log"_s));
    select(part);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_FALSE(isChecked(part));
    EXPECT_FALSE(isChecked(whole));
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_TRUE(isChecked(whole));
    clickCheckOf(whole);
    EXPECT_FALSE(isChecked(part));
    clean();
    EXPECT_TRUE(fs::exists(home_.containers() / "com.vendor.reader/Data/Library/Logs/reader.log"));
    EXPECT_FALSE(fs::exists(home_.library() / "Logs/backup 2.log"));
}

TEST_F(ListJourney, TheKeyboardGoesThroughTheRowsFromTheFirstAndOpensTheMenu) {
    auto* list = show(logsRow);
    lists()->pbtnFinder()->setFocus();
    type(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), list);
    EXPECT_EQ(list->currentIndex().row(), 0);
    type(Qt::Key_Delete);  // asks for the row that the keyboard is at
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_TRUE(alerts_.asked.back().message.contains(u"backup 2.log"_s));
    const struct {
        Qt::Key key;
        QString selected;
    } steps[] = {{Qt::Key_End, u"system.log"_s},      {Qt::Key_Home, u"backup 2.log"_s},
                 {Qt::Key_PageDown, u"system.log"_s}, {Qt::Key_PageUp, u"backup 2.log"_s},
                 {Qt::Key_Down, u"backup 10.log"_s},  {Qt::Key_Space, u"backup 10.log"_s}};
    for (const auto& step : steps) {
        type(step.key);
        EXPECT_EQ(selected(), step.selected);
    }
    EXPECT_FALSE(isChecked(u"backup 10.log"_s));
    type(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), lists()->pbtnSelectAll());

    QTest::keyClick(list, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(openMenu());
    openMenu()->close();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(list, &menuKey);
    ASSERT_TRUE(openMenu());
    QTest::keyClick(openMenu(), Qt::Key_Down);
    QTest::keyClick(openMenu(), Qt::Key_Return);
    EXPECT_TRUE(wasAsked("item " + (home_.library() / "Logs/backup 10.log").native()));
}

}  // namespace brimvault::tests
