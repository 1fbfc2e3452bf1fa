#include <gmock/gmock.h>

#include <QAccessible>
#include <QAction>
#include <QPushButton>
#include <filesystem>
#include <set>

#include "support/FixtureTrees.h"
#include "support/WindowFixture.h"
#include "ui/controls/Sheet.h"
#include "ui/look/FocusRing.h"

using namespace brimvault;
using trial::Guide;

namespace {

class KeyboardJourney : public tests::WindowFixture {
protected:
    // Tab until the focus is on the widget; false when it never gets there.
    bool tabTo(const QWidget* widget) {
        constexpr int enough = 30;
        for (int presses = 0; presses < enough; ++presses) {
            if (QApplication::focusWidget() == widget) {
                return true;
            }
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return false;
    }
    void SetUp() override {
        start();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    }
};

TEST_F(KeyboardJourney, TheListHasTheKeyboardAgainAfterAScanThatIsStartedFromIt) {
    scan();
    guide_->list()->setFocus();
    QTest::keyClick(guide_->list(), Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(application_->pbScanning());
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning() && guide_->list() != nullptr; }));
    EXPECT_EQ(QApplication::focusWidget(), guide_->list());
}

TEST_F(KeyboardJourney, FromTheStartToACleanWithOneItemSpared) {
    ASSERT_EQ(QApplication::focusWidget(), window()->startPage()->btnStartScanButton2());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_TRUE(Guide::waitFor([this] { return application_->bScanStarted() && !application_->pbScanning(); }));

    ASSERT_TRUE(tabTo(guide_->list()));
    const QString spared = QStringLiteral("com.vendor.browser");
    QTest::keyClick(guide_->list(), Qt::Key_Home, Qt::ControlModifier);
    while (guide_->list()->currentIndex().row() != guide_->row(spared)) {
        QTest::keyClick(guide_->list(), Qt::Key_Down);
    }
    QTest::keyClick(guide_->list(), Qt::Key_Space);
    EXPECT_FALSE(isChecked(spared));

    ASSERT_TRUE(tabTo(lists()->pbtnClean()));
    alerts_.answers.push_back(tests::agree);
    QTest::keyClick(lists()->pbtnClean(), Qt::Key_Space);
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    EXPECT_EQ(names(), QStringList{spared});
    EXPECT_TRUE(std::filesystem::exists(caches() / spared.toStdString()));
}

TEST_F(KeyboardJourney, EveryControlIsReached) {
    scan();
    const auto reaches = [this](const QWidget* control) {
        EXPECT_TRUE(tabTo(control)) << control->accessibleName().toStdString();
        EXPECT_TRUE(ui::isFocusShown(control)) << control->accessibleName().toStdString();
    };
    for (const QWidget* control : std::initializer_list<QWidget*>{
             sections(), scanButton(), lists()->pbtnInf(), lists()->pbtnFinder(), guide_->list(),
             lists()->pbtnSelectAll(), lists()->plashka(), lists()->pbtnClean()}) {
        reaches(control);
    }
    constexpr int languagesRow = 1;
    clickSection(languagesRow);
    reaches(window()->pbtnLangs());
    QTest::keyClick(window()->pbtnLangs(), Qt::Key_Space);
    EXPECT_TRUE(Guide::waitFor([this] { return window()->pDrawer()->width() > 0; }));
    reaches(window()->pDrawer()->ptableView());
}

TEST_F(KeyboardJourney, DigitsSortAsTheHeaderDoes) {
    scan();
    ASSERT_TRUE(tabTo(guide_->list()));
    QTest::keyClick(guide_->list(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(names().first(), QStringLiteral("com.vendor.browser")) << "the largest";
    QTest::keyClick(guide_->list(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(names().last(), QStringLiteral("com.vendor.browser"));
    EXPECT_TRUE(guide_->list()->sortAction(ui::ItemListModel::sizeColumn)->isChecked()) << "as the row's menu shows";
}

class TwoSectionsJourney : public KeyboardJourney {
protected:
    void SetUp() override {
        start(allScans());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    }
    void tickOnly(const std::set<int>& rows) {
        ASSERT_TRUE(tabTo(sections()));
        QTest::keyClick(sections(), Qt::Key_Home);
        for (int row = 0; row < ui::sectionRowCount; ++row, QTest::keyClick(sections(), Qt::Key_Down)) {
            if (isSectionChecked(row) != rows.contains(row)) {
                QTest::keyClick(sections(), Qt::Key_Space);
            }
        }
    }
};

TEST_F(TwoSectionsJourney, TwoSectionsAreCleanedWithOneItemSpared) {
    constexpr int cachesRow = 0;
    constexpr int logsRow = 2;
    constexpr int trashRow = 4;
    tickOnly({logsRow, trashRow});
    ASSERT_TRUE(tabTo(scanButton()));
    QTest::keyClick(scanButton(), Qt::Key_Space);
    ASSERT_TRUE(Guide::waitFor([this] { return application_->bScanStarted() && !application_->pbScanning(); }));

    ASSERT_TRUE(tabTo(sections()));
    QTest::keyClick(sections(), Qt::Key_Home);
    while (sections()->currentIndex().row() != trashRow) {
        QTest::keyClick(sections(), Qt::Key_Down);
    }
    ASSERT_TRUE(tabTo(guide_->list()));
    const QString spared = QStringLiteral("holiday.jpg");
    while (guide_->list()->currentIndex().row() != guide_->row(spared)) {
        QTest::keyClick(guide_->list(), Qt::Key_Down);
    }
    QTest::keyClick(guide_->list(), Qt::Key_Space);
    const auto caches = trial::fingerprint(home_.caches());
    ASSERT_TRUE(tabTo(lists()->pbtnClean()));
    alerts_.answers.push_back(tests::agree);
    QTest::keyClick(lists()->pbtnClean(), Qt::Key_Space);
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));

    EXPECT_EQ(names(), QStringList{spared});
    const auto files = home_.desktopTrash() / "files";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(files), {}), 1);
    EXPECT_TRUE(std::filesystem::exists(files / spared.toStdString()));
    EXPECT_EQ(subtitle(logsRow), QStringLiteral("No files found"));
    EXPECT_EQ(trial::fingerprint(home_.caches()), caches) << "a section that was not ticked";
    EXPECT_EQ(subtitle(cachesRow), QStringLiteral("Not Scanned"));
}

// What an assistive client is given, without the client.
class AccessibleLists : public KeyboardJourney {
protected:
    void SetUp() override {
        KeyboardJourney::SetUp();
        scan();
        table_ = QAccessible::queryAccessibleInterface(guide_->list());
    }
    QAccessibleInterface* cell(const QString& name, int column) const {
        return table_->tableInterface()->cellAt(guide_->row(name), column);
    }

    static void act(QAccessibleInterface* on, const QString& action) { on->actionInterface()->doAction(action); }

    QAccessibleInterface* table_ = nullptr;
};

TEST_F(AccessibleLists, TellEverythingOfTheRowThatTheKeyboardIsAt) {
    ASSERT_TRUE(tabTo(guide_->list()));
    guide_->clickCell(guide_->row(QStringLiteral("com.vendor.browser")), ui::ItemListModel::sizeColumn);
    while (guide_->list()->currentIndex().row() != guide_->row(QStringLiteral("com.vendor.mail"))) {
        QTest::keyClick(guide_->list(), Qt::Key_Down);
    }
    auto* focused = table_->focusChild();
    ASSERT_NE(focused, nullptr);
    EXPECT_EQ(focused->text(QAccessible::Name), QStringLiteral("com.vendor.mail"));
    EXPECT_EQ(focused->text(QAccessible::Description), QStringLiteral("Size: 612.3 MB"));
    EXPECT_TRUE(focused->state().checkable && focused->state().checked);
    QTest::keyClick(guide_->list(), Qt::Key_Space);
    EXPECT_FALSE(focused->state().checked);
    act(focused, QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(focused->state().checked);
    EXPECT_TRUE(isChecked(QStringLiteral("com.vendor.mail")));
}

// The rows can still be chosen.
TEST_F(AccessibleLists, TellThatChecksAreLockedDuringAClean) {
    application_->setPbCleanning(true);
    auto* check = table_->tableInterface()->cellAt(0, ui::ItemListModel::checkColumn);
    auto* name = table_->tableInterface()->cellAt(0, ui::ItemListModel::nameColumn);
    EXPECT_TRUE(check->state().disabled);
    EXPECT_TRUE(!name->state().disabled && name->state().readOnly && name->state().checkable);
    EXPECT_FALSE(name->actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()));
    const auto section = QAccessible::queryAccessibleInterface(sections())->child(0)->state();
    EXPECT_TRUE(!section.disabled && section.readOnly && section.checkable);
    application_->setPbCleanning(false);
}

TEST_F(AccessibleLists, TickAllWithTheClickThatTheProgramWaitsFor) {
    auto* all = QAccessible::queryAccessibleInterface(lists()->pbtnSelectAll());
    EXPECT_EQ(all->role(), QAccessible::CheckBox);
    EXPECT_TRUE(all->state().checked && !all->state().checkStateMixed);
    guide_->clickCell(0, ui::ItemListModel::checkColumn);
    EXPECT_TRUE(!all->state().checked && all->state().checkStateMixed);
    act(all, QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(Guide::waitFor([&] { return isChecked(names().first()); }));
    EXPECT_TRUE(all->state().checked && !all->state().checkStateMixed);
}

TEST_F(AccessibleLists, CannotBeUsedBehindASheet) {
    ui::Sheet sheet({300, 200}, window());
    QPushButton answer(sheet.panel());
    auto* clean = QAccessible::queryAccessibleInterface(lists()->pbtnClean());
    auto* section = QAccessible::queryAccessibleInterface(sections())->child(0);
    auto* sort = table_->child(1 + ui::ItemListModel::sizeColumn);
    auto* row = table_->tableInterface()->cellAt(0, ui::ItemListModel::nameColumn);
    const QStringList before = names();
    EXPECT_TRUE(!clean->state().disabled && !section->state().disabled);
    sheet.beginSheet(&answer);
    for (auto* covered : {clean, section, sort, row}) {
        EXPECT_TRUE(covered->state().disabled) << covered->text(QAccessible::Name).toStdString();
        EXPECT_TRUE(covered->actionInterface()->actionNames().isEmpty());
        act(covered, QAccessibleActionInterface::pressAction());
        act(covered, QAccessibleActionInterface::toggleAction());
        act(covered, QAccessibleActionInterface::setFocusAction());
    }
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(&answer)->state().disabled);
    constexpr int longerThanAClickTakes = 50;
    QTest::qWait(longerThanAClickTakes);
    EXPECT_TRUE(alerts_.asked.empty());
    EXPECT_TRUE(answer.hasFocus());
    EXPECT_EQ(names(), before);
    EXPECT_TRUE(isChecked(before.first()) && isSectionChecked(0));
    sheet.endSheet();
    EXPECT_TRUE(!clean->state().disabled && !section->state().disabled && !row->state().disabled);
}

TEST_F(AccessibleLists, TellNamesSizesAndChecksAndCanBeTicked) {
    EXPECT_EQ(table_->text(QAccessible::Name), QStringLiteral("Caches"));
    EXPECT_EQ(table_->role(), QAccessible::Table);
    const QString name = QStringLiteral("com.vendor.mail");
    auto* check = cell(name, ui::ItemListModel::checkColumn);
    EXPECT_EQ(check->text(QAccessible::Name), name);
    EXPECT_TRUE(check->state().checkable);
    EXPECT_TRUE(check->state().checked);
    check->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(cell(name, ui::ItemListModel::checkColumn)->state().checked);
    EXPECT_FALSE(isChecked(name));
    EXPECT_EQ(cell(name, ui::ItemListModel::sizeColumn)->text(QAccessible::Name), QStringLiteral("612.3 MB"));
}

TEST_F(AccessibleLists, FollowRowsThatChangePlacesOrGo) {
    auto* first = table_->tableInterface()->cellAt(0, ui::ItemListModel::nameColumn);
    guide_->clickHeader(ui::ItemListModel::sizeColumn);
    QTest::qWait(10);
    EXPECT_EQ(first->text(QAccessible::Name), names().first());
    const int rows = table_->tableInterface()->rowCount();
    for (int index = 0; index < table_->childCount(); ++index) {
        ASSERT_NE(table_->child(index), nullptr);
        EXPECT_EQ(table_->indexOfChild(table_->child(index)), index);
    }
    clean();
    EXPECT_LT(table_->tableInterface()->rowCount(), rows);
    EXPECT_EQ(table_->tableInterface()->cellAt(rows - 1, 0), nullptr);
    for (int index = 0; index < table_->childCount(); ++index) {
        ASSERT_NE(table_->child(index), nullptr);
    }
}

TEST_F(AccessibleLists, SortByAPressedHeader) {
    auto* header = table_->child(1 + ui::ItemListModel::sizeColumn);
    EXPECT_EQ(header->role(), QAccessible::ColumnHeader);
    EXPECT_EQ(header->text(QAccessible::Name), QStringLiteral("Size"));
    header->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(names().first(), QStringLiteral("com.vendor.browser")) << "the largest";
    EXPECT_EQ(header->text(QAccessible::Description), QStringLiteral("Sorted descending"));
    EXPECT_EQ(table_->child(1 + ui::ItemListModel::nameColumn)->text(QAccessible::Description), QString());
    EXPECT_EQ(header->actionInterface()->keyBindingsForAction(QAccessibleActionInterface::pressAction()),
              QStringList{QStringLiteral("Ctrl+3")});
}

TEST_F(AccessibleLists, ShowTheSectionsWithTheirChecks) {
    auto* list = QAccessible::queryAccessibleInterface(sections());
    EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Sections"));
    ASSERT_EQ(list->childCount(), ui::sectionRowCount);
    auto* downloads = list->child(3);
    EXPECT_EQ(downloads->text(QAccessible::Name), QStringLiteral("Downloads"));
    EXPECT_FALSE(downloads->state().checked);
    downloads->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(list->child(3)->state().checked);
    EXPECT_TRUE(isSectionChecked(3));
}

}  // namespace
