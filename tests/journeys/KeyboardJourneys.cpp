// The window without a mouse, and what an assistive client is given, without the client.

#include <QAccessible>
#include <QPushButton>

#include "support/WindowFixture.h"
#include "ui/controls/Sheet.h"
#include "ui/look/FocusRing.h"

namespace brimvault::tests {

class KeyboardJourney : public WindowFixture {
protected:
    // Tab until the focus is on the widget; false when it never gets there.
    bool tabTo(const QWidget* widget) {
        constexpr int enough = 30;
        for (int presses = 0; presses < enough && QApplication::focusWidget() != widget; ++presses) {
            type(Qt::Key_Tab);
        }
        return QApplication::focusWidget() == widget;
    }
    void begin(engine::ScanTable table) {
        start(std::move(table));
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    }
};

TEST_F(KeyboardJourney, EveryControlIsReachedAlsoAfterAScanThatIsStartedFromTheList) {
    begin(scans());
    scan();
    guide_->list()->setFocus();
    type(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(application_->pbScanning());
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning() && guide_->list() != nullptr; }));
    EXPECT_EQ(QApplication::focusWidget(), guide_->list());
    const auto reaches = [this](const QWidget* control) {
        EXPECT_TRUE(tabTo(control)) << control->accessibleName().toStdString();
        EXPECT_TRUE(ui::isFocusShown(control)) << control->accessibleName().toStdString();
    };
    for (const QWidget* control : std::initializer_list<QWidget*>{
             sections(), scanButton(), lists()->pbtnInf(), lists()->pbtnFinder(), guide_->list(),
             lists()->pbtnSelectAll(), lists()->plashka(), lists()->pbtnClean()}) {
        reaches(control);
    }
    clickSection(languagesRow);
    reaches(window()->pbtnLangs());
    type(Qt::Key_Space);
    EXPECT_TRUE(Guide::waitFor([this] { return window()->pDrawer()->width() > 0; }));
    reaches(window()->pDrawer()->ptableView());
}

TEST_F(KeyboardJourney, FromTheStartToACleanOfTwoSections) {
    begin(allScans());
    auto* startButton = window()->startPage()->btnStartScanButton2();
    ASSERT_EQ(QApplication::focusWidget(), startButton);
    ASSERT_TRUE(tabTo(sections()));
    for (const auto key : {Qt::Key_Home, Qt::Key_Space, Qt::Key_Down, Qt::Key_Space}) {
        type(key);  // neither Caches nor Language Resources
    }
    ASSERT_TRUE(tabTo(startButton));
    type(Qt::Key_Space);
    awaitEndOfScan();

    const auto caches = fingerprint(home_.caches());
    ASSERT_TRUE(tabTo(lists()->pbtnClean()));
    alerts_.answers.push_back(agree);
    type(Qt::Key_Space);
    awaitEndOfClean();
    EXPECT_TRUE(fs::is_empty(home_.desktopTrash() / "files"));
    EXPECT_EQ(show(logsRow), nullptr) << "an empty list gives way to words";
    EXPECT_EQ(subtitle(logsRow), u"No files found"_s);
    EXPECT_EQ(fingerprint(home_.caches()), caches) << "a section that was not ticked";
    EXPECT_EQ(subtitle(cachesRow), u"Not Scanned"_s);
}

class AccessibleLists : public KeyboardJourney {
protected:
    void SetUp() override {
        begin(scans());
        scan();
        table_ = QAccessible::queryAccessibleInterface(guide_->list());
    }
    [[nodiscard]] QAccessibleInterface* cellAt(int row, int column) const {
        return table_->tableInterface()->cellAt(row, column);
    }
    static void act(QAccessibleInterface* on, const QString& action) { on->actionInterface()->doAction(action); }

    QAccessibleInterface* table_ = nullptr;
};

TEST_F(AccessibleLists, TellEverythingOfTheRowThatTheKeyboardIsAt) {
    const auto mail = u"com.vendor.mail"_s;
    ASSERT_TRUE(tabTo(guide_->list()));
    guide_->clickCell(guide_->row(u"com.vendor.browser"_s), ItemListModel::sizeColumn);
    for (int step = guide_->list()->currentIndex().row(); step < guide_->row(mail); ++step) {
        type(Qt::Key_Down);
    }
    auto* focused = table_->focusChild();
    ASSERT_NE(focused, nullptr);
    EXPECT_EQ(focused->text(QAccessible::Name), mail);
    EXPECT_EQ(focused->text(QAccessible::Description), u"Size: 61.23 MB"_s);
    EXPECT_TRUE(focused->state().checkable && focused->state().checked);
    EXPECT_EQ(cellAt(guide_->row(mail), ItemListModel::sizeColumn)->text(QAccessible::Name), u"61.23 MB"_s);
    auto* check = cellAt(guide_->row(mail), ItemListModel::checkColumn);
    EXPECT_EQ(check->text(QAccessible::Name), mail);
    EXPECT_TRUE(check->state().checkable && check->state().checked);
    type(Qt::Key_Space);
    EXPECT_FALSE(focused->state().checked || check->state().checked);
    act(focused, QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(focused->state().checked && isChecked(mail));
    act(check, QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(check->state().checked || isChecked(mail));
}

// The rows can still be chosen.
TEST_F(AccessibleLists, TellThatChecksAreLockedDuringAClean) {
    application_->setPbCleanning(true);
    EXPECT_TRUE(cellAt(0, ItemListModel::checkColumn)->state().disabled);
    auto* name = cellAt(0, ItemListModel::nameColumn);
    EXPECT_TRUE(!name->state().disabled && name->state().readOnly && name->state().checkable);
    EXPECT_FALSE(name->actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()));
    const auto section = QAccessible::queryAccessibleInterface(sections())->child(0)->state();
    EXPECT_TRUE(!section.disabled && section.readOnly && section.checkable);
    application_->setPbCleanning(false);
}

TEST_F(AccessibleLists, CannotBeUsedBehindASheet) {
    ui::Sheet sheet({300, 200}, window());
    QPushButton answer(sheet.panel());
    QAccessibleInterface* const all[] = {QAccessible::queryAccessibleInterface(lists()->pbtnClean()),
                                         QAccessible::queryAccessibleInterface(sections())->child(0),
                                         table_->child(1 + ItemListModel::sizeColumn),
                                         cellAt(0, ItemListModel::nameColumn)};
    const QStringList before = names();
    sheet.beginSheet(&answer);
    for (auto* covered : all) {
        EXPECT_TRUE(covered->state().disabled) << covered->text(QAccessible::Name).toStdString();
        EXPECT_TRUE(covered->actionInterface()->actionNames().isEmpty());
        for (const auto& action :
             {QAccessibleActionInterface::pressAction(), QAccessibleActionInterface::toggleAction(),
              QAccessibleActionInterface::setFocusAction()}) {
            act(covered, action);
        }
    }
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(&answer)->state().disabled);
    QCoreApplication::processEvents();  // clicks are queued
    EXPECT_TRUE(alerts_.asked.empty());
    EXPECT_TRUE(answer.hasFocus());
    EXPECT_EQ(names(), before);
    EXPECT_TRUE(isChecked(before.first()) && isSectionChecked(cachesRow));
    sheet.endSheet();
    for (auto* free : all) {
        EXPECT_FALSE(free->state().disabled) << free->text(QAccessible::Name).toStdString();
    }
}

TEST_F(AccessibleLists, FollowRowsThatChangePlacesOrGo) {
    const auto expectChildrenInPlace = [this] {
        for (int index = 0; index < table_->childCount(); ++index) {
            ASSERT_NE(table_->child(index), nullptr);
            EXPECT_EQ(table_->indexOfChild(table_->child(index)), index);
        }
    };
    auto* first = cellAt(0, ItemListModel::nameColumn);
    auto* header = table_->child(1 + ItemListModel::sizeColumn);
    auto* nameHeader = table_->child(1 + ItemListModel::nameColumn);
    EXPECT_EQ(nameHeader->text(QAccessible::Description), u"Sorted ascending"_s);
    EXPECT_EQ(header->role(), QAccessible::ColumnHeader);
    EXPECT_EQ(table_->child(1 + ItemListModel::checkColumn)->text(QAccessible::Name), u"Selected"_s);
    EXPECT_EQ(header->actionInterface()->keyBindingsForAction(QAccessibleActionInterface::pressAction()),
              QStringList{u"Ctrl+3"_s});
    act(header, QAccessibleActionInterface::pressAction());
    QCoreApplication::processEvents();  // the news of another order are queued
    EXPECT_EQ(header->text(QAccessible::Description), u"Sorted descending"_s);
    EXPECT_EQ(nameHeader->text(QAccessible::Description), QString());
    EXPECT_EQ(names().first(), u"com.vendor.browser"_s) << "the largest";
    EXPECT_EQ(first->text(QAccessible::Name), names().first());
    expectChildrenInPlace();
    const int rows = table_->tableInterface()->rowCount();
    clean();
    EXPECT_LT(table_->tableInterface()->rowCount(), rows);
    EXPECT_EQ(cellAt(rows - 1, 0), nullptr);
    expectChildrenInPlace();
}

}  // namespace brimvault::tests
