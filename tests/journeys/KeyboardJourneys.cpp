#include <gmock/gmock.h>

#include <QAccessible>
#include <filesystem>

#include "ui/WindowFixture.h"

using namespace brimvault;
using tests::Guide;

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
    for (const QWidget* control :
         std::initializer_list<QWidget*>{sections(), scanButton(), guide_->list(), lists()->pbtnSelectAll(),
                                         lists()->plashka(), lists()->pbtnClean()}) {
        EXPECT_TRUE(tabTo(control)) << control->accessibleName().toStdString();
    }
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

    QAccessibleInterface* table_ = nullptr;
};

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
