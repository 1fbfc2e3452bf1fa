#include <gmock/gmock.h>

#include <QAccessible>
#include <QMenu>
#include <filesystem>
#include <set>

#include "engine/model/FileSize.h"
#include "support/FixtureTrees.h"
#include "support/WindowFixture.h"
#include "ui/look/ImageLoad.h"

namespace fs = std::filesystem;

using namespace brimvault;
using langres::LangListController;
using trial::Guide;
using ui::ItemListModel;

namespace {

constexpr int cachesRow = 0;
constexpr int languagesRow = 1;
const QString writer = QStringLiteral("Office Writer");

// Over a home whose user reads German and English.
class LanguageJourney : public tests::WindowFixture {
protected:
    void SetUp() override {
        home_.makeApplications();
        start(allScans());
    }

    void scanApplications() const {
        clickSection(languagesRow);
        scan();
    }
    [[nodiscard]] ui::LanguagesDrawer* drawer() const { return window()->pDrawer(); }
    [[nodiscard]] ui::LanguagesTableView* languages() const { return drawer()->ptableView(); }
    [[nodiscard]] bool isOut() const {
        return Guide::waitFor(
            [this] { return drawer()->isVisible() && drawer()->width() == languages()->width() + 1; });
    }
    void openDrawer() const {
        Guide::click(window()->pbtnLangs());
        ASSERT_TRUE(isOut());
    }
    [[nodiscard]] QModelIndex language(const char* name) const {
        const auto* model = languages()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const auto index = model->index(row, LangListController::textColumn);
            if (index.data().toString() == QString::fromUtf8(name)) {
                return index.siblingAtColumn(LangListController::checkColumn);
            }
        }
        return {};
    }
    void clickLanguage(const char* name) const {
        languages()->scrollTo(language(name));
        QTest::mouseClick(languages()->viewport(), Qt::LeftButton, {},
                          languages()->visualRect(language(name)).center());
    }
    [[nodiscard]] bool isKept(const char* name) const {
        return language(name).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    [[nodiscard]] QString shown(const QString& application, int column) const {
        return guide_->list()->model()->index(guide_->row(application), column).data().toString();
    }

    [[nodiscard]] fs::path resources(const QString& application) const {
        return home_.applications() / (application.toStdString() + ".app/Contents/Resources");
    }
    /// The names of the localizations on disk but those given.
    [[nodiscard]] std::set<std::string> localizations(const QString& application,
                                                      const std::set<std::string>& without) const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(resources(application))) {
            const auto name = entry.path().stem().native();
            if (entry.path().extension() == ".lproj" && name != "Base" && !without.contains(name)) {
                names.insert(name);
            }
        }
        return names;
    }
    /// What the list is to show when these are kept, measured apart.
    void expectShown(const QString& application, const std::set<std::string>& kept) const {
        const auto going = localizations(application, kept);
        quint64 size = 0;
        for (const auto& name : going) {
            size += tests::sizeOf(resources(application) / (name + ".lproj"));
        }
        EXPECT_EQ(shown(application, ItemListModel::countColumn), QString::number(going.size()));
        EXPECT_EQ(shown(application, ItemListModel::sizeColumn), engine::FileSize::formatMemoryStringDot1(size));
    }
};

}  // namespace

TEST_F(LanguageJourney, ShowsWhatTheUnneededLanguagesOfApplicationsHold) {
    scanApplications();
    EXPECT_EQ(names().join(QLatin1Char('|')),
              QStringLiteral("Chess|Mail Reader|Map Viewer|Music|Notes|Office Writer|Photo Studio|Video Player"));
    for (const auto& name : names()) {
        expectShown(name, {"en", "German"});
    }
    EXPECT_EQ(subtitle(languagesRow), QStringLiteral("1.4 GB of 1.4 GB Selected"));
    guide_->clickHeader(ItemListModel::countColumn);
    EXPECT_EQ(names().first(), writer) << "the largest count, equals by name";
    EXPECT_EQ(names().last(), QStringLiteral("Chess"));
    const auto* header = guide_->list()->horizontalHeader();
    EXPECT_LT(header->visualIndex(ItemListModel::countColumn), header->visualIndex(ItemListModel::sizeColumn));
}

TEST_F(LanguageJourney, ALanguageThatIsKeptOrNotChangesTheSizesAtOnce) {
    scanApplications();
    guide_->clickHeader(ItemListModel::sizeColumn);
    guide_->clickCell(guide_->row(writer), ItemListModel::nameColumn);
    openDrawer();
    const QString before = status() + subtitle(languagesRow);
    clickLanguage("Deutsch");
    EXPECT_FALSE(isKept("Deutsch"));
    expectShown(writer, {"en"});
    EXPECT_NE(status() + subtitle(languagesRow), before);
    EXPECT_EQ(defaults_->boolean(QStringLiteral("LK_de")), false);

    clickLanguage("Deutsch");
    EXPECT_EQ(status() + subtitle(languagesRow), before);
    clickLanguage("Englisch");
    EXPECT_TRUE(isKept("Englisch")) << "it always stays";
    clickLanguage("Chinesisch (Vereinfacht)");
    clickLanguage("Portugiesisch (Portugal)");
    expectShown(writer, {"en", "German", "zh_CN", "pt_PT"});
    EXPECT_EQ(guide_->list()->selectionModel()->selectedRows().first().row(), guide_->row(writer));

    for (int row = 1; row < languages()->model()->rowCount(); ++row) {
        languages()->model()->setData(languages()->model()->index(row, 0), Qt::Checked, Qt::CheckStateRole);
    }
    EXPECT_EQ(guide_->list(), nullptr) << "nothing is unneeded: words in the place of the list";
    EXPECT_EQ(subtitle(languagesRow), QStringLiteral("No extra resources found"));
    clickLanguage("Deutsch");
    EXPECT_EQ(names().size(), 8);
    quit();
    start(allScans());
    EXPECT_FALSE(isKept("Deutsch"));
    EXPECT_TRUE(isKept("Portugiesisch (Portugal)"));
}

TEST_F(LanguageJourney, TheDrawerFollowsItsSectionAndTheUsersWish) {
    EXPECT_FALSE(window()->pbtnLangs()->isVisible());
    clickSection(languagesRow);
    EXPECT_TRUE(window()->startPage()->isVisible());
    openDrawer();  // beside the start page
    scan();
    ASSERT_TRUE(isOut());
    const int wide = lists()->width();
    const int narrow = wide - drawer()->width();
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->list()->width() == narrow; }));
    window()->resize(860, 560);
    EXPECT_TRUE(Guide::waitFor([&] { return drawer()->width() < wide - narrow && isOut(); }));
    window()->resize(1000, 660);
    clickSection(cachesRow);
    EXPECT_FALSE(window()->pbtnLangs()->isVisible());
    ASSERT_TRUE(Guide::waitFor([this] { return !drawer()->isVisible(); }));
    clickSection(languagesRow);
    ASSERT_TRUE(isOut());
    EXPECT_TRUE(Guide::waitFor([&] { return guide_->list()->width() == narrow; }));
    Guide::click(window()->pbtnLangs());
    Guide::click(window()->pbtnLangs());  // called back on its way
    ASSERT_TRUE(isOut());
    Guide::click(window()->pbtnLangs());
    ASSERT_TRUE(Guide::waitFor([this] { return !drawer()->isVisible(); }));
    EXPECT_TRUE(Guide::waitFor([&] { return guide_->list()->width() == wide; }));
    clickSection(cachesRow);
    clickSection(languagesRow);
    EXPECT_FALSE(drawer()->isOpen());
}

TEST_F(LanguageJourney, CleaningLeavesTheLanguagesToKeepAndTheApplicationsThatAreSpared) {
    for (const int row : {0, 2, 4}) {
        clickSectionCheck(row);
    }
    scanApplications();
    guide_->clickCell(guide_->row(QStringLiteral("Music")), ItemListModel::checkColumn);
    EXPECT_EQ(application_->psectController().isAppsChecked(), true);
    const auto music = trial::fingerprint(resources(QStringLiteral("Music")));
    const auto outside = home_.everythingOutside({"Applications"});
    fs::create_directory(resources(writer) / "Broken.lproj");
    clean();
    EXPECT_EQ(names(), QStringList(QStringLiteral("Music")));
    EXPECT_EQ(trial::fingerprint(resources(QStringLiteral("Music"))), music);
    EXPECT_EQ(localizations(writer, {}), (std::set<std::string>{"en", "German", "Broken"}))
        << "what the scan did not see";
    EXPECT_TRUE(fs::exists(resources(writer) / "Base.lproj/Main.nib"));
    EXPECT_TRUE(fs::exists(resources(writer) / "../Info.plist"));
    EXPECT_EQ(home_.everythingOutside({"Applications"}), outside);
    EXPECT_TRUE(application_->notCleaned().applications.isEmpty());
    EXPECT_TRUE(language("Französisch").flags().testFlag(Qt::ItemIsUserCheckable))
        << "the languages can be chosen again";
}

TEST_F(LanguageJourney, ARowIsShownInTheFileManagerAndNeverRemovedSingly) {
    scanApplications();
    guide_->clickCell(guide_->row(writer), ItemListModel::nameColumn);
    guide_->clickCell(guide_->row(QStringLiteral("Chess")), ItemListModel::checkColumn);
    EXPECT_FALSE(isChecked(QStringLiteral("Chess")));
    EXPECT_EQ(guide_->list()->selectionModel()->selectedRows().first().row(), guide_->row(writer))
        << "ticking does not select";
    Guide::click(lists()->pbtnFinder());
    const auto bundle = (home_.applications() / "Office Writer.app").native();
    EXPECT_TRUE(Guide::waitFor([&] { return fileBrowser_.asked() == std::vector<std::string>{"item " + bundle}; }));
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.empty());
    guide_->list()->requestMenuOfCurrentRow();
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    for (const QAction* entry : menu->actions()) {
        EXPECT_NE(entry->text(), QStringLiteral("Remove..."));
    }
    menu->close();
}

TEST_F(LanguageJourney, TheKeyboardReachesTheDrawerAndIsNotLostWithIt) {
    scanApplications();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    window()->pbtnLangs()->setFocus();
    QTest::keyClick(window()->pbtnLangs(), Qt::Key_Space);
    ASSERT_TRUE(isOut());
    lists()->pbtnSelectAll()->setFocus();
    QTest::keyClick(lists()->pbtnSelectAll(), Qt::Key_Backtab);
    ASSERT_EQ(QApplication::focusWidget(), languages());
    QTest::keyClick(languages(), Qt::Key_Down);
    QTest::keyClick(languages(), Qt::Key_Space);
    EXPECT_FALSE(isKept("Deutsch"));
    QTest::keyClick(languages(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), guide_->list());
    languages()->setFocus();
    QTest::keyClick(languages(), Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), window()->pbtnLangs());
    EXPECT_FALSE(drawer()->isOpen());
}

TEST_F(LanguageJourney, AssistiveClientsAreToldNamesAndChecksOfLanguages) {
    scanApplications();
    openDrawer();
    auto* table = QAccessible::queryAccessibleInterface(languages());
    EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Languages"));
    EXPECT_EQ(table->role(), QAccessible::Table);
    auto* cells = table->tableInterface();
    ASSERT_EQ(cells->rowCount(), 33);
    for (int row = 0; row < cells->rowCount(); ++row) {
        const auto flag = languages()->model()->index(row, LangListController::iconColumn);
        EXPECT_EQ(ui::ImageLoad::sizeOf(QLatin1String(flag.data(LangListController::iconRole).toByteArray())),
                  QSizeF(24, 18))
            << cells->cellAt(row, LangListController::textColumn)->text(QAccessible::Name).toStdString();
    }
    auto* german = cells->cellAt(1, LangListController::checkColumn);
    EXPECT_EQ(german->text(QAccessible::Name), QStringLiteral("Deutsch"));
    EXPECT_EQ(cells->cellAt(1, LangListController::textColumn)->text(QAccessible::Name), QStringLiteral("Deutsch"));
    EXPECT_TRUE(german->state().checked);
    german->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(german->state().checked);
    expectShown(writer, {"en"});
    auto* english = cells->cellAt(0, LangListController::checkColumn);
    EXPECT_TRUE(english->state().checked);
    EXPECT_TRUE(english->state().disabled);
    EXPECT_FALSE(english->actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()));
}
