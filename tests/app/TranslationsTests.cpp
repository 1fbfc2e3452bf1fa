#include "app/Translations.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QAction>
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

/// Puts every text into brackets, except for what takes the places in it. What comes out of the program without them
/// has not been translated. A text that is asked for must also stand in the German translation, with the same places.
class Brackets final : public QTranslator {
public:
    Brackets() {
        EXPECT_TRUE(german_.load(QStringLiteral(":/translations/brimvault_de")));
        EXPECT_TRUE(QCoreApplication::installTranslator(this));
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* source, const char* comment,
                                    int count) const override {
        if (*context == 'Q') {
            return {};  // Qt's own
        }
        static const QRegularExpression place(QStringLiteral("(%L?\\d+)"));
        const QString text = QString::fromUtf8(source);
        const QString german = german_.translate(context, source, comment, count);
        EXPECT_FALSE(german.trimmed().isEmpty()) << context << " has no German text: " << source;
        EXPECT_EQ(marksOf(german), marksOf(text)) << context << ": " << source;
        return QStringLiteral(u"⟦%1⟧").arg(QString(text).replace(place, QStringLiteral(u"⟧\\1⟦")));
    }
    /// What stands outside of brackets, of HTML's tags, and of dates, which are the system's.
    static QStringList untranslated(const QString& text) {
        static const QRegularExpression between(
            QStringLiteral(u"⟦[^⟦⟧]*⟧|<[^>]*>|\\w+, \\d+ \\w+ \\d+ [\\d:]+ \\w+|[,:] "));
        return text.split(between, Qt::SkipEmptyParts);
    }

private:
    /// Places for others, and mnemonics; in any order.
    static QStringList marksOf(const QString& text) {
        static const QRegularExpression mark(QStringLiteral("%L?\\d+|%n|&(?=\\w)"));
        QStringList marks;
        for (const auto& match : mark.globalMatch(text)) {
            marks << match.captured();
        }
        marks.sort();
        return marks;
    }

    QTranslator german_;
};

/// The window, and all that it says from the start page to the report of a clean.
class SpeakingWindow : public WindowFixture {
protected:
    /// Takes in what widgets show, and what an assistive client reads of them.
    void listen() {
        for (auto* widget : QApplication::allWidgets()) {
            heard_ << widget->windowTitle() << widget->toolTip() << widget->property("text").toString();
            for (const auto* action : widget->actions()) {
                heard_ << action->text();
            }
            if (auto* accessible = QAccessible::queryAccessibleInterface(widget)) {
                heard_ << accessible->text(QAccessible::Name) << accessible->text(QAccessible::Description);
            }
            if (const auto* view = qobject_cast<const QAbstractItemView*>(widget); view && view->model()) {
                listenToRows(*view->model());
            }
        }
    }
    void listenToRows(const QAbstractItemModel& model) {
        for (const int role : {int(Qt::DisplayRole), int(Qt::AccessibleTextRole), int(Qt::AccessibleDescriptionRole)}) {
            for (int column = 0; column < model.columnCount(); ++column) {
                heard_ << model.headerData(column, Qt::Horizontal, role).toString();
                for (int row = 0; row < model.rowCount(); ++row) {
                    heard_ << model.index(row, column).data(role).toString();
                }
            }
        }
    }
    void waitForAlert(const std::function<void()>& act) {
        const auto told = alerts_.asked.size();
        act();
        ASSERT_TRUE(Guide::waitFor([&] { return alerts_.asked.size() > told; }));
    }

    void scanAndLookAtLists() {
        for (const int row : {0, 1, 2, 4}) {
            clickSectionCheck(row);
        }
        alerts_.answers.push_back(agree);  // that all be ticked, since none is
        Guide::click(scanButton());
        awaitEndOfScan();
        for (int row = ui::sectionRowCount - 1; row >= 0; --row) {
            clickSection(row);
            listen();
        }
        guide_->clickCell(0, ui::ItemListModel::nameColumn);
        QTest::keyClick(guide_->list(), Qt::Key_F10, Qt::ShiftModifier);
        listen();
        QApplication::activePopupWidget()->close();
        fileBrowser_.answers = false;
        fileBrowser_.opens = false;
        Guide::click(lists()->pbtnInf());
        ASSERT_TRUE(Guide::waitFor([this] { return window()->findChild<ui::InfoWindow*>() != nullptr; }));
        listen();
        delete window()->findChild<ui::InfoWindow*>();
        waitForAlert([this] { Guide::click(lists()->pbtnFinder()); });
        QTest::keyClick(guide_->list(), Qt::Key_Delete);
        Guide::click(lists()->pbtnClean());  // asked, and cancelled
    }
    void lookAtMenuReportAndAlerts() {
        auto& menu = application_->menu();
        menu.perform(ui::MenuAction::showAboutScreen);
        listen();
        delete window()->findChild<ui::AboutWC*>();
        for (const auto mail : {ui::MenuAction::sendFeedbackPressed, ui::MenuAction::shareByMail}) {
            waitForAlert([&] { menu.perform(mail); });
            heard_ << QUrl::fromPercentEncoding(QByteArray::fromStdString(workspace_.opened().back()));
        }
        application_->pNotCleanedController().updateNotCleanedRusultsApps(
            engine::NotCleanedApplications{{QStringLiteral("Chess"), 1}, {QStringLiteral("Writer"), 3}}, {}, {}, {}, {},
            application_.get());
        for (const auto& alert : alerts_.asked) {
            Guide::confirmNextQuestion([this](const auto&) { listen(); });
            ui::WindowAlerts().runModal(alert, window());
        }
    }

    /// Names, paths, addresses, sizes, and what is not said in words.
    [[nodiscard]] bool isOfNoLanguage(const QString& text) const {
        static const QRegularExpression data(
            QStringLiteral("^[\\W\\d]*$|^[\\d.]+ [KMGTP]?B$|^\\S+@\\S+$|^\\S*&BODY=$|^https://|^\\.{0,2}/|"
                           "^[r-][w-][x-]\\S+ \\(\\d+\\)$|^(Brimvault|Chess|Writer)$"));
        return data.match(text).hasMatch() || names_.contains(text);
    }

    QSet<QString> heard_;
    QSet<QString> names_;
};

}  // namespace

TEST(Translations, SpeakTheFirstOfTheUsersLanguagesThatThereIs) {
    const std::pair<const char*, std::vector<const char*>> examples[] = {
        {"en", {"", "C", "en-GB de", "nds den"}},
        {"de", {"de-DE de-Latn-DE de", "de-CH", "de en", "fr-FR fr de-DE en", "pt-PT pt de"}},
        {"pt-BR", {"pt-BR de"}},
    };
    for (const auto& [chosen, manyWanted] : examples) {
        for (const char* wanted : manyWanted) {
            EXPECT_EQ(Translations::choose(words(wanted), words("de pt-BR")), QLatin1String(chosen)) << wanted;
        }
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

TEST_F(SpeakingWindow, SaysNothingThatIsNotTranslatedAndAllOfItInGerman) {
    home_.makeApplications();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home_.path())) {
        names_ << QString::fromStdString(entry.path().filename().native())
               << QString::fromStdString(entry.path().stem().native());
    }
    const QFileInfo owned(QString::fromStdString(home_.path().native()));
    names_ << owned.owner() << owned.group();
    platform::UserDefaults defaults(home_.path() / "none.ini");
    const langres::LangListController offered(languages_, defaults, [](const QStringList&) {});
    for (int row = 0; row < offered.rowCount(); ++row) {
        names_ << offered.text(row);  // in the user's language, whatever the program speaks
    }
    const Brackets brackets;
    workspace_.opens = false;
    start(allScans());
    listen();
    scanAndLookAtLists();
    lookAtMenuReportAndAlerts();
    EXPECT_GT(heard_.size(), 150);
    for (const auto& text : heard_) {
        for (const auto& part : Brackets::untranslated(text)) {
            EXPECT_TRUE(isOfNoLanguage(part.trimmed())) << part.toStdString() << " in: " << text.toStdString();
        }
    }
}

}  // namespace brimvault::tests
