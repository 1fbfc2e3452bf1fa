#include <gmock/gmock.h>

#include <QFormLayout>
#include <QMenu>
#include <filesystem>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "support/HeardNotifications.h"
#include "support/WindowFixture.h"
#include "ui/services/InfoWindow.h"

namespace fs = std::filesystem;

using namespace brimvault;
using trial::Guide;

namespace {

enum Row { cachesRow, languagesRow, logsRow, downloadsRow, trashRow };

QString text(const char* utf8) { return QString::fromUtf8(utf8); }

class ListJourney : public tests::WindowFixture {
protected:
    void SetUp() override {
        start(allScans());
        clickSectionCheck(downloadsRow);
        scan();
    }

    ui::TTableView* show(Row row) {
        clickSection(row);
        return guide_->list();
    }

    [[nodiscard]] QRect placeOf(const char* name, int column = ui::ItemListModel::nameColumn) const {
        auto* list = guide_->list();
        return list->visualRect(list->model()->index(guide_->row(text(name)), column));
    }

    void select(const char* name) const {
        QTest::mouseClick(guide_->list()->viewport(), Qt::LeftButton, {}, placeOf(name).center());
    }

    [[nodiscard]] QString selected() const {
        const auto rows = guide_->list()->selectionModel()->selectedRows(ui::ItemListModel::nameColumn);
        return rows.isEmpty() ? QString() : rows.first().data().toString();
    }

    /// The menu that a right click on the row opens; null when none does.
    QMenu* menuOf(const char* name) const {
        auto* viewport = guide_->list()->viewport();
        const QPoint place = placeOf(name).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
        QApplication::sendEvent(viewport, &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    static QStringList enabledEntries(const QMenu& menu) {
        QStringList texts;
        for (const auto* action : menu.actions()) {
            if (!action->isSeparator() && action->isEnabled()) {
                texts.append(action->text());
            }
        }
        return texts;
    }

    static void choose(QMenu* menu, const char* entry) {
        for (auto* action : menu->actions()) {
            if (action->text() == QLatin1String(entry)) {
                menu->close();
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "no entry " << entry;
    }

    bool wasAsked(const std::string& request) const {
        return Guide::waitFor([&] { return !fileBrowser_.asked().empty() && fileBrowser_.asked().back() == request; });
    }
};

}  // namespace

TEST_F(ListJourney, ShowsEverySectionAndCleansWhatIsTicked) {
    EXPECT_TRUE(show(logsRow));
    EXPECT_EQ(names(), QStringList({text("backup 2.log"), text("backup 10.log"), text("com.vendor.browser"),
                                    text("com.vendor.reader"), text("editor_2024.crash"), text("reader.log"),
                                    text("system.log")}));
    show(downloadsRow);
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Unchecked);
    EXPECT_EQ(subtitle(downloadsRow), text("0 B of 6.21 GB Selected"));
    show(trashRow);
    EXPECT_EQ(names(), QStringList({text("draft.doc"), text("holiday.jpg"), text("old project")}));
    guide_->clickCell(guide_->row(text("draft.doc")), ui::ItemListModel::checkColumn);
    const auto downloads = trial::fingerprint(home_.downloads());
    clean();
    EXPECT_EQ(trial::fingerprint(home_.downloads()), downloads);
    EXPECT_TRUE(fs::exists(home_.trash() / "draft.doc"));
    EXPECT_TRUE(fs::is_empty(home_.desktopTrash() / "files"));
    EXPECT_TRUE(fs::is_empty(home_.desktopTrash() / "info"));
    show(logsRow);
    EXPECT_EQ(guide_->list(), nullptr);  // an empty list gives way to words
}

TEST_F(ListJourney, EachClickOnAHeaderTurnsTheOrderRound) {
    show(trashRow);
    const QStringList fromA({text("draft.doc"), text("holiday.jpg"), text("old project")});
    const QStringList fromZ(fromA.rbegin(), fromA.rend());
    const auto* header = guide_->list()->horizontalHeader();
    guide_->clickHeader(ui::ItemListModel::nameColumn);
    EXPECT_EQ(names(), fromZ);
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    guide_->clickHeader(ui::ItemListModel::iconColumn);
    EXPECT_EQ(header->sortIndicatorSection(), ui::ItemListModel::nameColumn) << "pictures have no order";
    guide_->clickHeader(ui::ItemListModel::nameColumn);
    EXPECT_EQ(names(), fromA);
    guide_->clickHeader(ui::ItemListModel::sizeColumn);
    const QStringList largestFirst = names();
    guide_->clickHeader(ui::ItemListModel::sizeColumn);
    EXPECT_EQ(names(), QStringList(largestFirst.rbegin(), largestFirst.rend()));
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);
}

TEST_F(ListJourney, SpeaksOfFilesByTheirPathsInEverySection) {
    struct Case {
        Row row;
        const char* name;
        fs::path path;
    };
    const std::vector<Case> cases = {
        {cachesRow, "com.vendor.photos", home_.caches() / "com.vendor.photos"},
        {logsRow, "com.vendor.reader", home_.containers() / "com.vendor.reader/Data/Library/Logs"},
        {downloadsRow, "photos.zip", home_.downloads() / "photos.zip"},
        {trashRow, "old project", home_.desktopTrash() / "files/old project"}};
    for (const auto& [row, name, path] : cases) {
        auto* list = show(row);
        const auto index = list->model()->index(guide_->row(text(name)), ui::ItemListModel::nameColumn);
        EXPECT_TRUE(index.data(Qt::ToolTipRole).toString().contains(QString::fromStdString(path))) << name;
        select(name);
        Guide::click(lists()->pbtnFinder());
        EXPECT_TRUE(wasAsked("item " + path.native())) << name;
        Guide::click(lists()->pbtnInf());
        EXPECT_TRUE(wasAsked("properties " + path.native())) << name;
    }
}

TEST_F(ListJourney, WithoutARowTheButtonsShowTheFolderOfTheSection) {
    struct Case {
        Row row;
        fs::path folder;
    };
    fs::remove_all(home_.library() / "Logs");  // its neighbours hold logs too
    fs::create_directories(home_.library() / "Application Support/CrashReporter");
    for (const auto& [row, folder] :
         {Case{cachesRow, home_.caches()}, Case{logsRow, home_.library() / "Application Support/CrashReporter"},
          Case{downloadsRow, home_.downloads()}, Case{trashRow, home_.trash()},
          Case{languagesRow, folder_ / "root/Applications"}}) {
        fs::create_directories(folder);
        show(row);
        Guide::click(lists()->pbtnFinder());
        EXPECT_TRUE(wasAsked("folder " + folder.native()));
        Guide::click(lists()->pbtnInf());
        EXPECT_TRUE(wasAsked("properties " + folder.native()));
        application_->menu().validateItems();
        EXPECT_FALSE(application_->menu().menu()->actions().isEmpty());
    }
    const auto asked = fileBrowser_.asked().size();
    application_->menu().perform(ui::MenuAction::doSelShowInFinder);
    application_->menu().perform(ui::MenuAction::doSelGetInfo);
    fs::remove_all(home_.downloads());
    show(downloadsRow);
    Guide::click(lists()->pbtnFinder());
    ASSERT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() == 1; }));
    EXPECT_EQ(alerts_.asked.back().message, text("Can't find file"));
    EXPECT_EQ(fileBrowser_.asked().size(), asked) << "the menu's commands need a row";
}

TEST_F(ListJourney, ARightClickSelectsItsRowAndOffersWhatCanBeDone) {
    show(downloadsRow);
    select("invoice.txt");
    auto* menu = menuOf("photos.zip");
    ASSERT_TRUE(menu);
    EXPECT_EQ(selected(), text("photos.zip"));
    EXPECT_EQ(enabledEntries(*menu), QStringList({text("Show in File Manager"), text("Show Information"),
                                                  text("Remove..."), text("Sort By")}));
    choose(menu, "Show in File Manager");
    EXPECT_TRUE(wasAsked("item " + (home_.downloads() / "photos.zip").native()));

    application_->setPbCleanning(true);
    menu = menuOf("photos.zip");
    ASSERT_TRUE(menu);
    EXPECT_EQ(enabledEntries(*menu),
              QStringList({text("Show in File Manager"), text("Show Information"), text("Sort By")}));
    menu->close();
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.empty());
    application_->setPbCleanning(false);
}

TEST_F(ListJourney, FallsBackWhereNoFileBrowserAnswers) {
    fileBrowser_.answers = false;
    show(downloadsRow);
    select("invoice.txt");
    Guide::click(lists()->pbtnFinder());
    EXPECT_TRUE(wasAsked("folder " + home_.downloads().native()));
    EXPECT_TRUE(alerts_.asked.empty());

    Guide::click(lists()->pbtnInf());
    ui::InfoWindow* information = nullptr;
    const auto says = [&](const QString& what) {
        const auto labels = information->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->accessibleName() == what; });
    };
    ASSERT_TRUE(Guide::waitFor([&] {
        information = window()->findChild<ui::InfoWindow*>();
        return information != nullptr && information->isVisible();
    }));
    EXPECT_TRUE(Guide::waitFor([&] { return says(text("Size: 12 B (12 bytes)")); }));
    EXPECT_TRUE(says(text("Where: ") + QString::fromStdString(home_.downloads())));
    EXPECT_FALSE(says(text("Kind: Folder")));
    QTest::keyClick(information, Qt::Key_Escape);
    EXPECT_TRUE(Guide::waitFor([&] { return window()->findChild<ui::InfoWindow*>() == nullptr; }));

    fileBrowser_.opens = false;
    Guide::click(lists()->pbtnFinder());
    EXPECT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() == 1; }));
    EXPECT_EQ(alerts_.asked.back().message, text("Can't show file"));
}

TEST_F(ListJourney, TellsOfAFileThatIsNoLongerThere) {
    show(downloadsRow);
    select("invoice.txt");
    fs::remove(home_.downloads() / "invoice.txt");
    const QString path = QString::fromStdString(home_.downloads() / "invoice.txt");
    for (auto* button : {lists()->pbtnFinder(), lists()->pbtnInf()}) {
        alerts_.asked.clear();
        Guide::click(button);
        ASSERT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() == 1; }));
        EXPECT_EQ(alerts_.asked.back().message, text("Can't find file"));
        EXPECT_EQ(alerts_.asked.back().informativeText,
                  text("The file’s \"") + path + text("\" does not exist or its existence could not be determined"));
        EXPECT_EQ(alerts_.asked.back().buttons, ui::Alert::Buttons::takeNote);
    }
    EXPECT_TRUE(fileBrowser_.asked().empty());
}

TEST_F(ListJourney, DeleteAsksAndRemovesOneItem) {
    const tests::HeardNotifications heard = {engine::notification::singleFileRemoveFinished};
    show(trashRow);
    select("old project");
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_TRUE(alerts_.asked.back().message.contains(text("old project")));
    EXPECT_EQ(alerts_.asked.back().buttons, ui::Alert::Buttons::deleteAndCancel);
    EXPECT_FALSE(application_->pbRemoving());  // the answer was no
    EXPECT_EQ(remover_.timesLet, 0);
    const auto others = trial::fingerprint(home_.path(), {".local/share/Trash"});

    alerts_.answers.push_back(tests::agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(application_->pbRemoving());
    EXPECT_EQ(remover_.timesLet, 1);  // a password may be asked for
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(text("old project")) < 0; }));
    EXPECT_EQ(names(), QStringList({text("draft.doc"), text("holiday.jpg")}));
    EXPECT_EQ(selected(), text("holiday.jpg"));
    EXPECT_FALSE(fs::exists(home_.desktopTrash() / "files/old project"));
    EXPECT_FALSE(fs::exists(home_.desktopTrash() / "info/old project.trashinfo"));
    EXPECT_TRUE(fs::exists(home_.desktopTrash() / "info/holiday.jpg.trashinfo"));
    EXPECT_EQ(trial::fingerprint(home_.path(), {".local/share/Trash"}), others);
    EXPECT_EQ(engine::getNumberPropfromNotification(heard.all().back(), engine::key::success), 1);
}

TEST_F(ListJourney, AFailedRemovalIsToldAndChangesNothing) {
    const tests::HeardNotifications heard = {engine::notification::singleFileRemoveFinished};
    show(downloadsRow);
    select("photos.zip");
    // The folder has become a link: what is reached through it is not what was listed.
    fs::rename(home_.downloads(), home_.path() / "Elsewhere");
    fs::create_directory_symlink("Elsewhere", home_.downloads());
    alerts_.answers.push_back(tests::agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_TRUE(Guide::waitFor([&] { return !application_->pbRemoving(); }));
    ASSERT_EQ(alerts_.asked.size(), 2U);
    EXPECT_EQ(alerts_.asked.back().message, text("“photos.zip” could not be removed"));
    EXPECT_FALSE(alerts_.asked.back().informativeText.isEmpty());
    EXPECT_TRUE(fs::exists(home_.path() / "Elsewhere/photos.zip"));
    EXPECT_GE(guide_->row(text("photos.zip")), 0);
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
    select("photos.zip");
    alerts_.answers.push_back(tests::agree);
    alerts_.whileOpen = [this] {
        application_->psectController().doStartScan();
        application_->psectController().doStartClean();
        EXPECT_FALSE(application_->pbScanning());
        EXPECT_FALSE(application_->pbCleanning());
        EXPECT_EQ(alerts_.asked.size(), 1U);
        select("invoice.txt");
    };
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(text("photos.zip")) < 0; }));
    EXPECT_FALSE(fs::exists(home_.downloads() / "photos.zip"));
    EXPECT_TRUE(fs::exists(home_.downloads() / "invoice.txt"));
}

TEST_F(ListJourney, WhatLiesInARemovedFolderLeavesTheListWithIt) {
    show(logsRow);
    guide_->clickCell(guide_->row(text("reader.log")), ui::ItemListModel::checkColumn);
    select("com.vendor.reader");
    alerts_.answers.push_back(tests::agree);
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.back().informativeText.contains(text("It holds 1 other item")));
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(text("com.vendor.reader")) < 0; }));
    EXPECT_LT(guide_->row(text("reader.log")), 0);
    EXPECT_GE(guide_->row(text("system.log")), 0);
}

// The reader's logs are listed one by one and as a whole.
TEST_F(ListJourney, AFolderThatHoldsOtherRowsIsTickedWithThemAndUntickedWithAnyOfThem) {
    auto* list = show(logsRow);
    Guide::click(lists()->pbtnSelectAll());
    ASSERT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Unchecked);
    guide_->clickCell(guide_->row(text("com.vendor.reader")), ui::ItemListModel::checkColumn);
    EXPECT_TRUE(isChecked(text("com.vendor.reader")));
    EXPECT_TRUE(isChecked(text("reader.log")));
    EXPECT_FALSE(isChecked(text("system.log")));
    select("reader.log");
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_FALSE(isChecked(text("reader.log")));
    EXPECT_FALSE(isChecked(text("com.vendor.reader")));
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_TRUE(isChecked(text("com.vendor.reader")));
    guide_->clickCell(guide_->row(text("com.vendor.reader")), ui::ItemListModel::checkColumn);
    EXPECT_FALSE(isChecked(text("reader.log")));
    clean();
    EXPECT_TRUE(fs::exists(home_.containers() / "com.vendor.reader/Data/Library/Logs/reader.log"));
    EXPECT_FALSE(fs::exists(home_.library() / "Logs/backup 2.log"));
}

TEST_F(ListJourney, TheKeyboardGoesThroughTheListAndBeginsAtItsFirstRow) {
    auto* list = show(logsRow);
    lists()->pbtnFinder()->setFocus();
    QTest::keyClick(lists()->pbtnFinder(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), list);
    EXPECT_EQ(list->currentIndex().row(), 0);
    QTest::keyClick(list, Qt::Key_Delete);  // asks for the row that the keyboard is at
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_TRUE(alerts_.asked.back().message.contains(text("backup 2.log")));
    QTest::keyClick(list, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), lists()->pbtnSelectAll());
}

TEST_F(ListJourney, KeysMoveBetweenRowsAndOpenTheMenu) {
    auto* list = show(logsRow);
    select("com.vendor.browser");
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_EQ(selected(), text("system.log"));
    QTest::keyClick(list, Qt::Key_Home);
    EXPECT_EQ(selected(), text("backup 2.log"));
    QTest::keyClick(list, Qt::Key_PageDown);
    EXPECT_EQ(selected(), text("system.log"));
    QTest::keyClick(list, Qt::Key_PageUp);
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(selected(), text("backup 10.log"));
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_FALSE(isChecked(text("backup 10.log")));
    EXPECT_EQ(selected(), text("backup 10.log"));

    QTest::keyClick(list, Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    QTest::keyClick(menu, Qt::Key_Escape);
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(list, &menuKey);
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_TRUE(wasAsked("item " + (home_.library() / "Logs/backup 10.log").native()));
}
