#include <gmock/gmock.h>

#include <QAccessible>
#include <QClipboard>
#include <QElapsedTimer>
#include <QMenu>
#include <filesystem>
#include <semaphore>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "support/TextPrinting.h"
#include "support/WindowFixture.h"

namespace fs = std::filesystem;

using namespace brimvault;
using engine::NotCleanedApplications;
using engine::NotRemovedDictionary;
using testing::ElementsAre;
using trial::Guide;

namespace {

constexpr int languagesRow = 1;

class NotCleanedJourney : public tests::WindowFixture {
protected:
    void open() {
        start(allScans());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    }
    /// From now on no item of the caches folder can be removed, by an administrator neither: the way to it has become a
    /// link.
    void lockCaches() const {
        fs::rename(caches(), home_.path() / "Moved");
        fs::create_directory_symlink(home_.path() / "Moved", caches());
    }
    /// A clean that is held after the caches, before the window hears of them, until `meanwhile` is done.
    void cleanAndMeanwhile(const std::function<void()>& meanwhile) {
        std::binary_semaphore reached{0};
        std::binary_semaphore done{0};
        const auto held = engine::NotificationCenter::defaultCenter().addObserver(
            engine::vocabulary(engine::Section::caches).cleanFinished, [&](const auto&) {
                reached.release();
                done.acquire();
            });
        alerts_.answers.push_back(tests::agree);
        Guide::click(lists()->pbtnClean());
        const bool wasReached = Guide::waitFor([&] { return reached.try_acquire(); });
        if (wasReached) {
            meanwhile();
        }
        done.release();
        ASSERT_TRUE(wasReached);
        ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    }
    /// A report of two sections.
    void report() { report({{QStringLiteral("Chess"), 1}, {QStringLiteral("Writer"), 3}}, two_); }
    void report(const NotCleanedApplications& applications, const NotRemovedDictionary& trash) {
        controller().updateNotCleanedRusultsApps(applications, {}, {}, trash, {}, application_.get());
    }
    [[nodiscard]] ui::NotCleanedController& controller() const { return application_->pNotCleanedController(); }
    [[nodiscard]] ui::NotCleanedSheet* sheet() const { return controller().pNotCleanedInfoPanel(); }
    [[nodiscard]] QAbstractButton* closeButton() const { return Guide::button(sheet(), QStringLiteral("Close")); }
    [[nodiscard]] ui::NotCleanedListView* rows() const { return sheet()->pNotCleanedTView(); }
    [[nodiscard]] QRect place(int row) const { return rows()->visualRect(controller().index(row)); }
    [[nodiscard]] QList<int> selected() const {
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
    static void type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Where the widget is, but given to the window, as the mouse does.
    void clickPlaceOf(const QWidget* widget) const {
        QTest::mouseClick(window()->windowHandle(), Qt::LeftButton, {},
                          widget->mapTo(window(), widget->rect().center()));
    }
    static QString clipboard() { return QApplication::clipboard()->text(); }

    const NotRemovedDictionary two_ = {{QStringLiteral("archive"), QStringLiteral("Read-only file system")},
                                       {QStringLiteral("disk-image"), QStringLiteral("Permission denied")}};
};

TEST_F(NotCleanedJourney, ACleanTellsWhatItCouldNotRemove) {
    open();
    scan();
    lockCaches();
    lists()->pbtnClean()->setFocus();
    clean();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(sheet()->isVisible());
    QStringList messages{QStringLiteral("Caches")};
    for (const auto& name : names()) {
        if (fs::exists(fs::symlink_status(caches() / name.toStdString()))) {
            messages.append(name + QStringLiteral(" - Not a directory"));
        }
    }
    EXPECT_GT(messages.size(), 5);
    EXPECT_THAT(controller().rows().pNotCleanedMessages(), testing::UnorderedElementsAreArray(messages));
    EXPECT_EQ(sheet()->note(), QStringLiteral("Everything else was cleaned."));
    EXPECT_THAT(selected(), ElementsAre(1));
    EXPECT_EQ(place(0).top(), 0);

    auto* before = lists()->pbtnClean();  // there is still something to clean
    Guide::click(closeButton());
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(controller().rowCount(), 0);
    EXPECT_EQ(QApplication::focusWidget(), before);
}

TEST_F(NotCleanedJourney, ACleanThatRemovedEverythingTellsNothing) {
    open();
    scan();
    clean();
    EXPECT_EQ(guide_->list(), nullptr) << "nothing is left";
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(NotCleanedJourney, AStoppedCleanDoesNotClaimTheRest) {
    open();
    scan();
    lockCaches();
    cleanAndMeanwhile([this] { Guide::click(lists()->pbtnClean()); });
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->note(), QStringLiteral("The clean was stopped, so other items may be left as well."));
    type(Qt::Key_Escape);
    clean();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->note(), QStringLiteral("Everything else was cleaned."));
}

TEST_F(NotCleanedJourney, AWindowThatIsClosingShowsNoReport) {
    open();
    scan();
    lockCaches();
    cleanAndMeanwhile([this] { EXPECT_FALSE(window()->close()); });
    EXPECT_FALSE(window()->isVisible());
    EXPECT_FALSE(application_->notCleaned().files[engine::Section::caches].isEmpty());
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(NotCleanedJourney, TheDrawerGoesBeforeItAndComesAfterIt) {
    home_.makeApplications();
    open();
    clickSection(languagesRow);
    scan();
    Guide::click(window()->pbtnLangs());
    auto* drawer = window()->pDrawer();
    ASSERT_TRUE(Guide::waitFor([&] { return drawer->width() > 200; }));
    drawer->ptableView()->setFocus();
    report();
    if (sheet() == nullptr) {  // it slides
        EXPECT_FALSE(drawer->isOpen());
        ASSERT_TRUE(Guide::waitFor([this] { return sheet() != nullptr; }));
    }
    EXPECT_FALSE(drawer->isVisible());
    QTest::qWait(200);
    EXPECT_FALSE(drawer->isVisible()) << "not before the sheet has gone";
    type(Qt::Key_Return);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_FALSE(drawer->isOpen()) << "a moment later";
    EXPECT_TRUE(Guide::waitFor([&] { return drawer->isOpen() && drawer->width() > 200; }));
    EXPECT_EQ(QApplication::focusWidget(), drawer->ptableView());
    report();
    ASSERT_TRUE(Guide::waitFor([this] { return sheet() != nullptr; })) << "and again";
}

TEST_F(NotCleanedJourney, GoesWhenThereIsNothingToTellAnyMore) {
    open();
    scan();
    report();
    application_->pNotCleanedController().updateNotCleanedRusultsApps({}, {}, {}, {}, {}, application_.get());
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(NotCleanedJourney, TheKeyboardStaysInIt) {
    open();
    scan();
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
}

TEST_F(NotCleanedJourney, TheMouseReachesNothingBehindIt) {
    open();
    scan();
    report();
    clickPlaceOf(scanButton());
    clickPlaceOf(lists()->pbtnSelectAll());
    EXPECT_FALSE(application_->pbScanning());
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Checked);
    EXPECT_EQ(QApplication::focusWidget(), rows());
    type(Qt::Key_Escape);
    clickPlaceOf(lists()->pbtnSelectAll());
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Unchecked);
}

TEST_F(NotCleanedJourney, MessagesAreCopiedBelowTheirTitles) {
    open();
    report();
    clickRow(2);
    clickRow(4, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(2, 4)) << "a title on the way is not selected";
    type(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("Language Resources\nWriter - 3 language resources were not removed\n"
                                          "Trash\narchive - Read-only file system"));
    type(Qt::Key_A, Qt::ControlModifier);
    type(Qt::Key_C, Qt::ControlModifier);
    const QString all = clipboard();
    EXPECT_EQ(all, controller().rows().pNotCleanedMessages().join(QLatin1Char('\n')));

    clickRow(5);
    type(Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->actions().at(0)->trigger();
    EXPECT_EQ(clipboard(), QStringLiteral("Trash\ndisk-image - Permission denied"));
    menu->actions().at(1)->trigger();
    EXPECT_EQ(clipboard(), all);
}

TEST_F(NotCleanedJourney, TitlesAreNeitherSelectedNorStoodOn) {
    open();
    report();
    clickRow(3);
    EXPECT_THAT(selected(), ElementsAre(1)) << "a click on a title";
    type(Qt::Key_Down);
    type(Qt::Key_Down);
    EXPECT_THAT(selected(), ElementsAre(4));
    type(Qt::Key_Up);
    EXPECT_THAT(selected(), ElementsAre(2));
    type(Qt::Key_Home);
    EXPECT_THAT(selected(), ElementsAre(1));
}

TEST_F(NotCleanedJourney, AVeryLongReportOpensAtOnce) {
    NotRemovedDictionary many;
    for (int number = 0; number < 100'000; ++number) {
        many.insert(QStringLiteral("com.vendor.cache-%1").arg(number, 6, 10, QLatin1Char('0')),
                    QStringLiteral("Permission denied"));
    }
    open();
    QElapsedTimer time;
    time.start();
    report({}, many);
    sheet()->grab();
    EXPECT_LT(time.elapsed(), 1000) << "laying out every message takes seconds";
    type(Qt::Key_End);
    EXPECT_THAT(selected(), ElementsAre(100'000));
    EXPECT_TRUE(rows()->viewport()->rect().contains(place(100'000)));
}

TEST_F(NotCleanedJourney, AnAssistiveClientIsTold) {
    open();
    report();
    auto* dialog = QAccessible::queryAccessibleInterface(sheet());
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_TRUE(dialog->state().modal);
    EXPECT_EQ(dialog->text(QAccessible::Name), QStringLiteral("Some items were not removed"));
    EXPECT_EQ(dialog->text(QAccessible::Description), QStringLiteral("Everything else was cleaned."));
    auto* list = QAccessible::queryAccessibleInterface(rows());
    EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Items that were not removed"));
    EXPECT_TRUE(list->state().multiSelectable);
    ASSERT_EQ(list->childCount(), 6);
    auto* title = list->child(3);
    EXPECT_EQ(title->role(), QAccessible::Heading);
    EXPECT_EQ(title->text(QAccessible::Name), QStringLiteral("Trash"));
    EXPECT_FALSE(title->state().selectable);
    EXPECT_FALSE(list->tableInterface()->selectRow(3));
    auto* message = list->child(4);
    EXPECT_EQ(message->role(), QAccessible::ListItem);
    EXPECT_EQ(message->text(QAccessible::Name), QStringLiteral("archive - Read-only file system"));
    EXPECT_EQ(message->text(QAccessible::Description), QStringLiteral("Trash"));
    EXPECT_FALSE(message->state().selected);
    EXPECT_TRUE(list->child(1)->state().selected);
    EXPECT_TRUE(list->tableInterface()->selectRow(4));
    EXPECT_TRUE(message->state().selected);
    EXPECT_TRUE(list->child(1)->state().selected) << "one more";
}

// Without the application around it.
class NotCleanedControllerTest : public testing::Test, public ui::SheetCoordinator {
protected:
    void willModalSheetBegin(const QObject* sender) override { told_.append(sender == &controller_ ? 'b' : '?'); }
    void didModalSheetEnd(const QObject* sender) override { told_.append(sender == &controller_ ? 'e' : '?'); }

    const NotRemovedDictionary one_ = {{QStringLiteral("a"), QStringLiteral("b")}};
    QWidget window_;
    ui::NotCleanedController controller_{&window_};
    QByteArray told_;
};

TEST_F(NotCleanedControllerTest, TellsNobodyOfNothing) {
    controller_.updateNotCleanedRusultsApps({}, NotRemovedDictionary(), {}, {}, {}, this);
    controller_.showNotCleanedInfoPanel();
    EXPECT_EQ(told_, "");
    EXPECT_EQ(controller_.pNotCleanedInfoPanel(), nullptr);
}

TEST_F(NotCleanedControllerTest, LeavesItToItsApplicationWhenToShow) {
    controller_.updateNotCleanedRusultsApps({}, one_, {}, {}, {}, this);
    EXPECT_EQ(told_, "b");
    EXPECT_EQ(controller_.pNotCleanedInfoPanel(), nullptr);
    QWidget other;
    controller_.showNotCleanedInfoPanelModalFor(&other);
    ASSERT_NE(controller_.pNotCleanedInfoPanel(), nullptr);
    EXPECT_EQ(controller_.pNotCleanedInfoPanel()->parentWidget(), &other);
    controller_.doCloseNotCleanedPanel();
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(told_, "b");
    EXPECT_TRUE(Guide::waitFor([this] { return told_ == "be"; }));
    EXPECT_GE(time.elapsed(), 90);
}

TEST_F(NotCleanedControllerTest, ShowsAtOnceWithoutAnApplicationAndAnswersForItsRows) {
    controller_.updateNotCleanedRusultsApps({}, {}, {}, {}, one_, nullptr);
    ASSERT_NE(controller_.pNotCleanedInfoPanel(), nullptr);
    EXPECT_EQ(controller_.pNotCleanedInfoPanel()->parentWidget(), &window_);
    EXPECT_EQ(controller_.rowCount(), 2);
    EXPECT_EQ(controller_.index(1).data().toString(), QStringLiteral("a - b"));
    EXPECT_FALSE(controller_.index(2).data().isValid());
    EXPECT_TRUE(controller_.isGroupRow(0));
    EXPECT_FALSE(controller_.flags(controller_.index(0)).testFlag(Qt::ItemIsSelectable));
    EXPECT_TRUE(controller_.flags(controller_.index(1)).testFlag(Qt::ItemIsSelectable));
    controller_.doCloseNotCleanedPanel();
    EXPECT_EQ(controller_.rowCount(), 0);
    EXPECT_FALSE(controller_.isGroupRow(0));
}

TEST_F(NotCleanedControllerTest, KeepsInsideItsWindowAndBreaksLongMessagesIntoLines) {
    window_.resize(800, 600);
    window_.show();
    controller_.updateNotCleanedRusultsApps(
        {}, {}, {}, NotRemovedDictionary{{QString(200, QLatin1Char('n')), QStringLiteral("Permission denied")}}, one_,
        nullptr);
    auto* sheet = controller_.pNotCleanedInfoPanel();
    const auto height = [&](int row) { return sheet->pNotCleanedTView()->visualRect(controller_.index(row)).height(); };
    EXPECT_TRUE(Guide::waitFor([&] { return sheet->panel()->y() == 0; }));
    const int lines = height(1);
    EXPECT_GT(lines, 2 * height(3));
    window_.resize(360, 260);
    EXPECT_TRUE(Guide::waitFor([&] { return height(1) > lines; }));
    EXPECT_EQ(sheet->geometry(), window_.rect());
    EXPECT_TRUE(sheet->rect().contains(sheet->panel()->geometry()));
    const auto* button = Guide::button(sheet, QStringLiteral("Close"));
    EXPECT_TRUE(window_.rect().contains(QRect(button->mapTo(&window_, QPoint()), button->size())));
}

}  // namespace
