// The report of what a clean could not remove.

#include <QAccessible>
#include <QClipboard>

#include "support/SectionWork.h"
#include "support/WindowFixture.h"

namespace brimvault::tests {

using engine::NotCleanedApplications;
using engine::NotRemovedDictionary;
using testing::ElementsAre;

class NotCleanedJourney : public WindowFixture {
protected:
    void SetUp() override {
        start(allScans());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
        scan();
    }
    /// From now on no item of the caches folder can be removed, by an administrator neither: the way to it has become a
    /// link.
    void lockCaches() const {
        fs::rename(caches(), home_.path() / "Moved");
        fs::create_directory_symlink(home_.path() / "Moved", caches());
    }
    /// A clean that is held after the caches, before the window hears of them, until `meanwhile` is done.
    void cleanAndMeanwhile(const std::function<void()>& meanwhile) {
        Hang hang;
        const auto held = engine::NotificationCenter::defaultCenter().addObserver(
            engine::vocabulary(Section::caches).cleanFinished, [&](const auto&) { hang.wait(); });
        pressClean();
        ASSERT_TRUE(Guide::waitFor([&] { return hang.holdsAny(); }));
        meanwhile();
        hang.letOn();
        awaitEndOfClean();
    }
    [[nodiscard]] quint64 selectedSizeOfAll() const { return application_->psectController().getSize2CleanALLSel(); }
    /// A report of two sections.
    void report() { report({{u"Chess"_s, 1}, {u"Writer"_s, 3}}, two_); }
    void report(const NotCleanedApplications& applications, const NotRemovedDictionary& trash) {
        controller().updateNotCleanedRusultsApps(applications, {}, {}, trash, {}, application_.get());
    }
    [[nodiscard]] ui::NotCleanedController& controller() const { return application_->pNotCleanedController(); }
    [[nodiscard]] ui::NotCleanedSheet* sheet() const { return controller().pNotCleanedInfoPanel(); }
    [[nodiscard]] QAbstractButton* closeButton() const { return Guide::button(sheet(), u"Close"_s); }
    [[nodiscard]] ui::NotCleanedListView* rows() const { return sheet()->pNotCleanedTView(); }
    [[nodiscard]] QRect place(int row) const { return rows()->visualRect(controller().index(row)); }
    [[nodiscard]] QList<int> selectedRows() const {
        QList<int> found;
        for (const auto& index : rows()->selectionModel()->selectedIndexes()) {
            found.append(index.row());
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    void clickRow(int row, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mouseClick(rows()->viewport(), Qt::LeftButton, modifiers, place(row).center());
    }
    /// Where the widget is, but given to the window, as the mouse does.
    void clickPlaceOf(const QWidget* widget) const {
        QTest::mouseClick(window()->windowHandle(), Qt::LeftButton, {},
                          widget->mapTo(window(), widget->rect().center()));
    }
    static QString clipboard() { return QApplication::clipboard()->text(); }

    const NotRemovedDictionary two_ = {{u"archive"_s, u"Read-only file system"_s},
                                       {u"disk-image"_s, u"Permission denied"_s}};
};

TEST_F(NotCleanedJourney, ACleanTellsWhatItCouldNotRemoveAndDoesNotCountIt) {
    const quint64 selectedSize = selectedSizeOfAll();
    lockCaches();
    lists()->pbtnClean()->setFocus();
    clean();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(sheet()->isVisible());
    QStringList messages{u"Caches"_s};
    for (const auto& name : names()) {
        if (fs::exists(fs::symlink_status(caches() / name.toStdString()))) {
            messages.append(name + u" - Not a directory"_s);
        }
    }
    EXPECT_GT(messages.size(), 5);
    EXPECT_THAT(controller().rows().pNotCleanedMessages(), testing::UnorderedElementsAreArray(messages));
    EXPECT_EQ(sheet()->note(), u"Everything else was cleaned."_s);
    EXPECT_THAT(selectedRows(), ElementsAre(1));
    EXPECT_EQ(place(0).top(), 0);
    EXPECT_EQ(cleanedInTotal(), selectedSize - model().getSize2CleanCachesSel());

    Guide::click(closeButton());
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(controller().rowCount(), 0);
    EXPECT_EQ(QApplication::focusWidget(), lists()->pbtnClean()) << "there is still something to clean";
}

TEST_F(NotCleanedJourney, IsThereOnlyWhileThereIsSomethingToTell) {
    clean();
    EXPECT_EQ(guide_->list(), nullptr) << "nothing is left";
    EXPECT_EQ(sheet(), nullptr);
    report();
    EXPECT_NE(sheet(), nullptr);
    report({}, {});
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(NotCleanedJourney, AStoppedCleanDoesNotClaimTheRest) {
    lockCaches();
    cleanAndMeanwhile([this] { Guide::click(lists()->pbtnClean()); });
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->note(), u"The clean was stopped, so other items may be left as well."_s);
    for (const auto& next : {u"Everything else was cleaned."_s, QString()}) {
        type(Qt::Key_Escape);
        clean();
        ASSERT_NE(sheet(), nullptr);
        EXPECT_EQ(sheet()->note(), next) << "of the last one nothing has gone";
    }
}

TEST_F(NotCleanedJourney, AWindowThatIsClosingShowsNoReportAndRecordsWhatWasFreed) {
    const quint64 selectedSize = selectedSizeOfAll();
    lockCaches();
    cleanAndMeanwhile([this] { EXPECT_FALSE(window()->close()); });
    EXPECT_FALSE(window()->isVisible());
    EXPECT_FALSE(application_->notCleaned().files[Section::caches].isEmpty());
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_GT(cleanedInTotal(), 0U);
    EXPECT_EQ(cleanedInTotal(), selectedSize - selectedSizeOfAll());
}

TEST_F(NotCleanedJourney, TheDrawerGoesBeforeItAndComesAfterIt) {
    clickSection(languagesRow);
    Guide::click(window()->pbtnLangs());
    auto* drawer = window()->pDrawer();
    ASSERT_TRUE(Guide::waitFor([&] { return drawer->width() > 200; }));
    drawer->ptableView()->setFocus();
    report();
    ASSERT_TRUE(Guide::waitFor([this] { return sheet() != nullptr; }));
    EXPECT_FALSE(drawer->isVisible());
    application_->activatePanel(languagesRow);
    application_->menu().perform(ui::MenuAction::toggleDrawer);
    EXPECT_FALSE(drawer->isOpen()) << "not before the sheet has gone";
    type(Qt::Key_Return);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_FALSE(drawer->isOpen()) << "a moment later";
    EXPECT_TRUE(Guide::waitFor([&] { return drawer->isOpen() && drawer->width() > 200; }));
    EXPECT_EQ(QApplication::focusWidget(), drawer->ptableView());
    report();
    ASSERT_TRUE(Guide::waitFor([this] { return sheet() != nullptr; })) << "and again";
}

TEST_F(NotCleanedJourney, TheKeyboardStaysInIt) {
    const auto isMenuOpen = [this] { return application_->menu().menu()->isVisible(); };
    report();
    EXPECT_EQ(QApplication::focusWidget(), rows());
    type(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), closeButton());
    type(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), rows());
    type(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), closeButton());
    guide_->list()->setFocus();
    EXPECT_EQ(QApplication::focusWidget(), closeButton()) << "taken back";
    QTest::keyClick(window()->windowHandle(), Qt::Key_F10);
    EXPECT_FALSE(isMenuOpen());
    type(Qt::Key_Return);
    EXPECT_EQ(sheet(), nullptr);
    QTest::keyClick(window()->windowHandle(), Qt::Key_F10);
    EXPECT_TRUE(isMenuOpen());
    application_->menu().dismiss();
    report();
    QTest::keyClick(window()->windowHandle(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window()->isVisible()) << "the program ends in front of it as well";
}

TEST_F(NotCleanedJourney, TheMouseReachesNothingBehindIt) {
    report();
    clickPlaceOf(scanButton());
    clickPlaceOf(lists()->pbtnSelectAll());
    EXPECT_FALSE(application_->pbScanning());
    EXPECT_EQ(selectAllState(), Qt::Checked);
    EXPECT_EQ(QApplication::focusWidget(), rows());
    type(Qt::Key_Escape);
    clickPlaceOf(lists()->pbtnSelectAll());
    EXPECT_EQ(selectAllState(), Qt::Unchecked);
}

TEST_F(NotCleanedJourney, MessagesAreCopiedBelowTheirTitles) {
    report();
    clickRow(2);
    clickRow(4, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(2, 4)) << "a title on the way is not selected";
    type(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(),
              u"Language Resources\nWriter - 3 language resources were not removed\n"
              "Trash\narchive - Read-only file system"_s);
    type(Qt::Key_A, Qt::ControlModifier);
    type(Qt::Key_C, Qt::ControlModifier);
    const QString all = clipboard();
    EXPECT_EQ(all, controller().rows().pNotCleanedMessages().join(u'\n'));

    clickRow(5);
    type(Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->actions().at(0)->trigger();
    EXPECT_EQ(clipboard(), u"Trash\ndisk-image - Permission denied"_s);
    menu->actions().at(1)->trigger();
    EXPECT_EQ(clipboard(), all);
}

TEST_F(NotCleanedJourney, TitlesAreNeitherSelectedNorStoodOn) {
    report();
    clickRow(3);
    EXPECT_THAT(selectedRows(), ElementsAre(1)) << "a click on a title";
    for (const auto& [key, row] : {std::pair(Qt::Key_Down, 2), {Qt::Key_Down, 4}, {Qt::Key_Up, 2}, {Qt::Key_Home, 1}}) {
        type(key);
        EXPECT_THAT(selectedRows(), ElementsAre(row));
    }
}

// To lay out very many lines of several heights would keep the window busy.
TEST_F(NotCleanedJourney, LongMessagesHaveSeveralLinesUnlessThereAreVeryMany) {
    const auto height = [this](int messages, int length) {
        NotRemovedDictionary trash{{QString(length, u'n'), u"Permission denied"_s}};
        for (int number = 1; number < messages; ++number) {
            trash.insert(u"z%1"_s.arg(number), {});
        }
        report({}, trash);
        return place(1).height();
    };
    const int oneLine = height(1, 5);
    EXPECT_GT(height(1, 200), 2 * oneLine);
    EXPECT_GT(height(499, 200), 2 * oneLine) << "500 rows with the title";
    EXPECT_EQ(height(500, 200), oneLine);
    EXPECT_GT(height(1, 9'975), oneLine) << "10,000 characters with the title and the reason";
    EXPECT_EQ(height(1, 9'976), oneLine);
    EXPECT_EQ(height(100'000, 200), oneLine);
    type(Qt::Key_End);
    EXPECT_THAT(selectedRows(), ElementsAre(100'000));
    EXPECT_TRUE(rows()->viewport()->rect().contains(place(100'000)));
}

TEST_F(NotCleanedJourney, AnAssistiveClientIsTold) {
    report();
    auto* dialog = QAccessible::queryAccessibleInterface(sheet());
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_TRUE(dialog->state().modal);
    EXPECT_EQ(dialog->text(QAccessible::Description), u"Everything else was cleaned."_s);
    auto* list = QAccessible::queryAccessibleInterface(rows());
    EXPECT_TRUE(list->state().multiSelectable);
    ASSERT_EQ(list->childCount(), 6);
    auto* title = list->child(3);
    EXPECT_EQ(title->role(), QAccessible::Heading);
    EXPECT_EQ(title->text(QAccessible::Name), u"Trash"_s);
    EXPECT_FALSE(title->state().selectable);
    EXPECT_FALSE(list->tableInterface()->selectRow(3));
    auto* message = list->child(4);
    EXPECT_EQ(message->role(), QAccessible::ListItem);
    EXPECT_EQ(message->text(QAccessible::Name), u"archive - Read-only file system"_s);
    EXPECT_EQ(message->text(QAccessible::Description), u"Trash"_s);
    EXPECT_FALSE(message->state().selected);
    EXPECT_TRUE(list->tableInterface()->selectRow(4));
    EXPECT_TRUE(message->state().selected);
    EXPECT_TRUE(list->child(1)->state().selected) << "one more";
}

// Without the application around it.
TEST(NotCleanedSheet, ShowsAtOnceInsideItsWindowHoweverSmallThatIs) {
    QWidget window;
    ui::NotCleanedController controller{&window};
    window.resize(800, 600);
    window.show();
    controller.updateNotCleanedRusultsApps({}, {}, {}, {}, NotRemovedDictionary{{QString(200, u'n'), u"b"_s}}, nullptr);
    auto* sheet = controller.pNotCleanedInfoPanel();
    ASSERT_NE(sheet, nullptr);
    const auto height = [&] { return sheet->pNotCleanedTView()->visualRect(controller.index(1)).height(); };
    EXPECT_TRUE(Guide::waitFor([&] { return sheet->panel()->y() == 0; }));
    const int lines = height();
    window.resize(360, 260);
    EXPECT_TRUE(Guide::waitFor([&] { return height() > lines; }));
    EXPECT_EQ(sheet->geometry(), window.rect());
    EXPECT_TRUE(sheet->rect().contains(sheet->panel()->geometry()));
    const auto* button = Guide::button(sheet, u"Close"_s);
    EXPECT_TRUE(window.rect().contains(QRect(button->mapTo(&window, QPoint()), button->size())));
    EXPECT_FALSE(controller.index(2).data().isValid());
}

}  // namespace brimvault::tests
