#include "app/Translations.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>

#include "langres/LangListController.h"
#include "support/TextPrinting.h"
#include "support/WindowFixture.h"
#include "ui/controls/AlertWindow.h"
#include "ui/services/InfoWindow.h"

namespace brimvault::tests {

using namespace trial;

using app::Translations;

namespace {

QStringList words(const char* text) { return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts); }

constexpr int languagesRow = 1;
constexpr std::array checkedSections = {0, 1, 2, 4};

/// What the window says from the start page to the report of a clean.
class SpeakingWindow : public WindowFixture {
protected:
    /// All that is on show, and what an assistive client reads of it.
    static void listen(const QWidget* widget, QStringList& heard) {
        heard << widget->windowTitle() << widget->accessibleName() << widget->accessibleDescription()
              << widget->toolTip();
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            heard << label->text();
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            heard << button->text();
        } else if (const auto* menu = qobject_cast<const QMenu*>(widget)) {
            for (const auto* action : menu->actions()) {
                heard << action->text();
            }
        } else if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) {
            listenToRows(*view->model(), heard);
        }
        for (const auto* child : widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->isVisible()) {
                listen(child, heard);
            }
        }
    }
    static void listenToRows(const QAbstractItemModel& model, QStringList& heard) {
        for (int column = 0; column < model.columnCount(); ++column) {
            for (const int role : {int(Qt::DisplayRole), int(Qt::AccessibleTextRole)}) {
                heard << (dynamic_cast<const QAbstractListModel*>(&model) != nullptr
                              ? QString()
                              : model.headerData(column, Qt::Horizontal, role).toString());
            }
        }
        for (int row = 0; row < model.rowCount(); ++row) {
            for (int column = 0; column < model.columnCount(); ++column) {
                for (const int role :
                     {int(Qt::DisplayRole), int(Qt::AccessibleTextRole), int(Qt::AccessibleDescriptionRole)}) {
                    heard << model.index(row, column).data(role).toString();
                }
            }
        }
    }
    void listen(QStringList& heard) const { listen(window(), heard); }

    void startPage(QStringList& heard) {
        listen(heard);
        for (const int row : checkedSections) {
            clickSectionCheck(row);
        }
        Guide::click(scanButton());  // is told that no section is ticked
        for (const int row : checkedSections) {
            clickSectionCheck(row);
        }
    }

    void lists(QStringList& heard) {
        scan();
        for (int row = 0; row < ui::sectionRowCount; ++row) {
            clickSection(row);
            listen(heard);
        }
        clickSection(languagesRow);
        Guide::click(window()->pbtnLangs());
        QTest::qWait(sliding);
        listen(heard);
        Guide::click(window()->pbtnLangs());
        QTest::qWait(sliding);
        clickSection(0);
        Guide::click(WindowFixture::lists()->plashka());
        heard << status();
    }

    void menuAndInformation(QStringList& heard) {
        guide_->clickCell(0, ui::ItemListModel::nameColumn);
        QTest::keyClick(guide_->list(), Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = QApplication::activePopupWidget();
        ASSERT_NE(menu, nullptr);
        listen(menu, heard);
        menu->close();
        fileBrowser_.answers = false;
        fileBrowser_.opens = false;
        Guide::click(WindowFixture::lists()->pbtnInf());
        ASSERT_TRUE(Guide::waitFor([this] { return window()->findChild<ui::InfoWindow*>() != nullptr; }));
        auto* information = window()->findChild<ui::InfoWindow*>();
        listen(information, heard);
        delete information;
        Guide::click(WindowFixture::lists()->pbtnFinder());
        const auto told = alerts_.asked.size();
        ASSERT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() > told; }));
        QTest::keyClick(guide_->list(), Qt::Key_Delete);
    }

    void report(QStringList& heard) {
        Guide::click(WindowFixture::lists()->pbtnClean());  // asked, and cancelled
        application_->pNotCleanedController().updateNotCleanedRusultsApps(
            engine::NotCleanedApplications{{QStringLiteral("Chess"), 1}, {QStringLiteral("Writer"), 3}}, {}, {}, {}, {},
            application_.get());
        listen(heard);
        for (const auto& alert : alerts_.asked) {
            heard << alert.message << alert.informativeText;
        }
    }

    void menuOfTheProgram(QStringList& heard) {
        auto& menu = application_->menu();
        Guide::click(window()->sidebar()->pbtnMenu());
        listen(menu.menu(), heard);
        for (auto* part : menu.menu()->findChildren<QMenu*>()) {
            listen(part, heard);
        }
        menu.menu()->close();
        menu.perform(ui::MenuAction::showAboutScreen);
        auto* about = window()->findChild<ui::AboutWC*>();
        listen(about, heard);
        delete about;
        for (const auto what : {ui::MenuAction::sendFeedbackPressed, ui::MenuAction::shareByMail}) {
            const auto told = alerts_.asked.size();
            menu.perform(what);
            ASSERT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() > told; }));
            heard << QUrl::fromPercentEncoding(QByteArray::fromStdString(workspace_.opened().back()));
        }
    }

    QStringList story() {
        QStringList heard;
        workspace_.opens = false;
        start(allScans());
        menuOfTheProgram(heard);
        startPage(heard);
        lists(heard);
        menuAndInformation(heard);
        report(heard);
        quit();
        alerts_.asked.clear();
        std::filesystem::remove(defaultsFile());
        return heard;
    }

    /// What is the same in both languages: names, sizes, dates (which are the system's), what is not said in words.
    [[nodiscard]] bool isOfNoLanguage(const QString& text) const {
        static const QStringList same = words("Brimvault Caches Downloads Name");
        static const QRegularExpression data(
            QStringLiteral("^[\\W\\d]*$|^[\\d.]+ [KMGTP]?B$|^Version "
                           "[\\d.]+$|^https://|^[r-][w-][x-].*\\(\\d+\\)$|\\d\\d:\\d\\d:\\d\\d|^(Chess|Writer)$"));
        return same.contains(text) || data.match(text).hasMatch() || fileNames_.contains(text) ||
               text.startsWith(QLatin1Char('/'));
    }

    static constexpr int sliding = 400;  // milliseconds; a drawer is out or in by then
    QStringList fileNames_;
};

}  // namespace

TEST(Translations, SpeakTheFirstOfTheUsersLanguagesThatThereIs) {
    const struct {
        const char *wanted, *chosen;
    } examples[] = {
        {"", "en"},
        {"C", "en"},
        {"de", "de"},
        {"de-DE de-Latn-DE de", "de"},
        {"de-AT de-Latn-AT", "de"},
        {"de-CH", "de"},
        {"en-US en-Latn-US en de de-Latn-DE de-DE", "en"},
        {"en-GB de", "en"},
        {"de en", "de"},
        {"fr-FR fr de-DE en", "de"},
        {"fr-FR fr en de", "en"},
        {"fr nl", "en"},
        {"nds den", "en"},
        {"pt-PT pt de", "de"},
        {"pt-BR de", "pt-BR"},
    };
    for (const auto& [wanted, chosen] : examples) {
        EXPECT_EQ(Translations::choose(words(wanted), words("de pt-BR")), QLatin1String(chosen)) << wanted;
    }
    EXPECT_EQ(Translations::translated(), words("de"));
}

TEST(Translations, AreGoneWithWhatHoldsThem) {
    const auto trash = [] { return ui::sectionTitle(ui::sectionRows().back()); };
    {
        const Translations german(words("de-AT en"));
        EXPECT_EQ(german.language(), QStringLiteral("de"));
        EXPECT_EQ(trash(), QStringLiteral("Papierkorb"));
        const Translations english(words("en de"));
        EXPECT_EQ(english.language(), QStringLiteral("en"));
    }
    EXPECT_EQ(trash(), QStringLiteral("Trash"));
}

TEST_F(SpeakingWindow, SpeaksGerman) {
    const Translations german(words("de"));
    start();
    EXPECT_EQ(scanButton()->text(), QStringLiteral("Scannen"));
    QStringList titles;
    for (int row = 0; row < ui::sectionRowCount; ++row) {
        titles.append(sections()->model()->index(row, 0).data().toString());
    }
    EXPECT_EQ(titles, words("Caches Sprachressourcen Protokolle Downloads Papierkorb"));
    scan();
    Guide::click(WindowFixture::lists()->pbtnClean());
    ASSERT_EQ(alerts_.asked.size(), 1U);
    EXPECT_EQ(alerts_.asked[0].message,
              QStringLiteral("Möchten Sie die ausgewählten Objekte wirklich vollständig löschen?"));

    QStringList buttons;
    Guide::confirmNextQuestion([&](const ui::AlertWindow& alert) {
        buttons = {alert.firstButton()->text(), alert.secondButton()->text(), alert.findChild<QCheckBox*>()->text()};
    });
    ui::WindowAlerts().runModal(alerts_.asked[0], window());
    EXPECT_THAT(buttons, testing::ElementsAre(QStringLiteral("Löschen"), QStringLiteral("Abbrechen"),
                                              QStringLiteral("Diese Meldung nicht mehr anzeigen")));
}

TEST_F(SpeakingWindow, SaysNothingInEnglishThatIsNotSaidSoInGerman) {
    home_.makeApplications();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home_.path())) {
        fileNames_ << QString::fromStdString(entry.path().filename().native())
                   << QString::fromStdString(entry.path().stem().native());
    }
    platform::UserDefaults defaults(home_.path() / "none.ini");
    const langres::LangListController offered(languages_, defaults, [](const QStringList&) {});
    for (int row = 0; row < offered.rowCount(); ++row) {
        fileNames_ << offered.text(row);  // in the user's language, whatever the program speaks
    }
    const QStringList english = story();
    QStringList inGerman;
    {
        const Translations german(words("de"));
        inGerman = story();
    }
    EXPECT_GT(english.size(), 300);
    ASSERT_EQ(inGerman.size(), english.size());
    int different = 0;
    for (qsizetype place = 0; place < english.size(); ++place) {
        different += english[place] != inGerman[place] ? 1 : 0;
        EXPECT_TRUE(english[place] != inGerman[place] || isOfNoLanguage(english[place]))
            << "said in English: " << english[place].toStdString();
    }
    EXPECT_GT(different, 100);
}

}  // namespace brimvault::tests
