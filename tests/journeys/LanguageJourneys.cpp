// The languages of applications, over a home whose user reads German and English.

#include <QAccessible>

#include "support/WindowFixture.h"
#include "ui/look/ImageLoad.h"

namespace brimvault::tests {

using langres::LangListController;

class LanguageJourney : public WindowFixture {
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
    [[nodiscard]] bool isIn() const {
        return Guide::waitFor([this] { return !drawer()->isVisible(); });
    }
    [[nodiscard]] bool isListAsWideAs(int width) const {
        return Guide::waitFor([&] { return guide_->list()->width() == width; });
    }
    [[nodiscard]] QModelIndex language(const QString& name) const {
        const auto* model = languages()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const auto index = model->index(row, LangListController::textColumn);
            if (index.data().toString() == name) {
                return index.siblingAtColumn(LangListController::checkColumn);
            }
        }
        return {};
    }
    void clickLanguage(const QString& name) const {
        languages()->scrollTo(language(name));
        QTest::mouseClick(languages()->viewport(), Qt::LeftButton, {},
                          languages()->visualRect(language(name)).center());
    }
    [[nodiscard]] bool isKept(const QString& name) const {
        return language(name).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }

    /// The row's name, how many of its languages go, and their size.
    [[nodiscard]] QString shown(const QString& application) const {
        const auto text = [&](int column) { return cell(application, column).data().toString(); };
        return u"%1: %2, %3"_s.arg(application, text(ItemListModel::countColumn), text(ItemListModel::sizeColumn));
    }

    const QString writer_ = u"Office Writer"_s;
    const QString german_ = u"Deutsch"_s;
};

TEST_F(LanguageJourney, ShowsWhatTheUnneededLanguagesOfApplicationsHold) {
    scanApplications();
    QStringList list;
    for (const auto& name : names()) {
        list += shown(name);
    }
    EXPECT_EQ(list.join(u'|'),
              u"Chess: 12, 940 KB|Mail Reader: 14, 21.24 MB|Map Viewer: 17, 6.43 MB|Music: 28, 12.06 MB|"
              "Notes: 25, 2.29 MB|Office Writer: 31, 48.6 MB|Photo Studio: 22, 39.17 MB|Video Player: 31, 8.81 MB"_s);
    EXPECT_EQ(subtitle(languagesRow), u"139.5 MB of 139.5 MB Selected"_s);
    guide_->clickHeader(ItemListModel::countColumn);
    EXPECT_EQ(names().first(), writer_) << "the largest count, equals by name";
    EXPECT_EQ(names().last(), u"Chess"_s);
    const auto* header = guide_->list()->horizontalHeader();
    EXPECT_LT(header->visualIndex(ItemListModel::countColumn), header->visualIndex(ItemListModel::sizeColumn));

    clickCheckOf(u"Chess"_s);
    EXPECT_FALSE(isChecked(u"Chess"_s));
    EXPECT_EQ(selected(), QString()) << "ticking does not select";
    select(writer_);
    Guide::click(lists()->pbtnFinder());
    const std::vector<std::string> bundle = {"item " + (home_.applications() / "Office Writer.app").native()};
    EXPECT_TRUE(Guide::waitFor([&] { return fileBrowser_.asked() == bundle; }));
    QTest::keyClick(guide_->list(), Qt::Key_Delete);
    EXPECT_TRUE(alerts_.asked.empty()) << "nothing is removed singly";
}

TEST_F(LanguageJourney, ALanguageThatIsKeptOrNotChangesTheSizesAtOnce) {
    scanApplications();
    guide_->clickHeader(ItemListModel::sizeColumn);
    select(writer_);
    Guide::click(window()->pbtnLangs());
    ASSERT_TRUE(isOut());
    const QString before = status() + subtitle(languagesRow);
    clickLanguage(german_);
    EXPECT_FALSE(isKept(german_));
    EXPECT_EQ(shown(writer_), u"Office Writer: 32, 50.17 MB"_s);
    EXPECT_NE(status() + subtitle(languagesRow), before);
    EXPECT_EQ(defaults_->boolean(u"LK_de"_s), false);

    clickLanguage(german_);
    EXPECT_EQ(status() + subtitle(languagesRow), before);
    clickLanguage(u"Englisch"_s);
    EXPECT_TRUE(isKept(u"Englisch"_s)) << "it always stays";
    clickLanguage(u"Chinesisch (Vereinfacht)"_s);
    clickLanguage(u"Portugiesisch (Portugal)"_s);
    EXPECT_EQ(shown(writer_), u"Office Writer: 29, 45.46 MB"_s);
    EXPECT_EQ(selected(), writer_);

    for (int row = 1; row < languages()->model()->rowCount(); ++row) {
        languages()->model()->setData(languages()->model()->index(row, 0), Qt::Checked, Qt::CheckStateRole);
    }
    EXPECT_EQ(guide_->list(), nullptr) << "nothing is unneeded: words in the place of the list";
    EXPECT_EQ(subtitle(languagesRow), u"No extra resources found"_s);
    clickLanguage(german_);
    EXPECT_EQ(names().size(), 8);
    quit();
    start(allScans());
    EXPECT_FALSE(isKept(german_));
    EXPECT_TRUE(isKept(u"Portugiesisch (Portugal)"_s));
}

TEST_F(LanguageJourney, TheDrawerFollowsItsSectionAndTheUsersWish) {
    EXPECT_FALSE(window()->pbtnLangs()->isVisible());
    clickSection(languagesRow);
    EXPECT_TRUE(window()->startPage()->isVisible());
    auto* button = QAccessible::queryAccessibleInterface(window()->pbtnLangs());
    EXPECT_TRUE(button->state().expandable && !button->state().expanded);
    Guide::click(window()->pbtnLangs());
    ASSERT_TRUE(isOut()) << "beside the start page";
    EXPECT_TRUE(button->state().expanded);
    EXPECT_EQ(button->text(QAccessible::Description), u"Open"_s);
    scan();
    ASSERT_TRUE(isOut());
    const int wide = lists()->width();
    const int narrow = wide - drawer()->width();
    ASSERT_TRUE(isListAsWideAs(narrow));
    window()->resize(860, 560);
    EXPECT_TRUE(Guide::waitFor([&] { return drawer()->width() < wide - narrow && isOut(); }));
    window()->resize(1000, 660);
    clickSection(cachesRow);
    EXPECT_FALSE(window()->pbtnLangs()->isVisible());
    ASSERT_TRUE(isIn());
    clickSection(languagesRow);
    ASSERT_TRUE(isOut());
    EXPECT_TRUE(isListAsWideAs(narrow));
    Guide::click(window()->pbtnLangs());
    Guide::click(window()->pbtnLangs());  // called back on its way
    ASSERT_TRUE(isOut());
    Guide::click(window()->pbtnLangs());
    ASSERT_TRUE(isIn());
    EXPECT_TRUE(isListAsWideAs(wide));
    clickSection(cachesRow);
    clickSection(languagesRow);
    EXPECT_FALSE(drawer()->isOpen());
}

TEST_F(LanguageJourney, TheKeyboardReachesTheDrawerAndIsNotLostWithIt) {
    scanApplications();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    window()->pbtnLangs()->setFocus();
    type(Qt::Key_Space);
    ASSERT_TRUE(isOut());
    lists()->pbtnSelectAll()->setFocus();
    type(Qt::Key_Backtab);
    ASSERT_EQ(QApplication::focusWidget(), languages());
    type(Qt::Key_Down);
    type(Qt::Key_Space);
    EXPECT_FALSE(isKept(german_));
    type(Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), guide_->list());
    languages()->setFocus();
    type(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), window()->pbtnLangs());
    EXPECT_FALSE(drawer()->isOpen());
}

TEST_F(LanguageJourney, EachLanguageHasItsFlag) {
    const auto* model = languages()->model();
    ASSERT_EQ(model->rowCount(), 33);
    for (int row = 0; row < model->rowCount(); ++row) {
        const auto flag = model->index(row, LangListController::iconColumn).data(LangListController::iconRole);
        EXPECT_EQ(ui::ImageLoad::sizeOf(QLatin1String(flag.toByteArray())), QSizeF(24, 18)) << row;
    }
}

}  // namespace brimvault::tests
