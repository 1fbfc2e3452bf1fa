#pragma once

#include <gmock/gmock.h>

#include <QLabel>
#include <QMenu>
#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "app/CleanOperations.h"
#include "app/scan/ScanOperations.h"
#include "engine/model/FFItem.h"
#include "engine/model/FileSize.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "langres/LanguagesManager.h"
#include "langres/SAOperation.h"
#include "platform/System.h"
#include "platform/UserDefaults.h"
#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/SChOperation.h"
#include "scanners/SLogsOperation.h"
#include "support/TextPrinting.h"
#include "trial/Guide.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"
#include "ui/controls/AlertPresenter.h"
#include "ui/services/DefaultsKeys.h"
#include "ui/window/FAppDelegate.h"

namespace brimvault::tests {

using namespace trial;
using namespace Qt::StringLiterals;

using engine::Section;
using ui::ItemListModel;

namespace fs = std::filesystem;

inline QString sizeText(quint64 bytes) { return engine::FileSize::formatMemoryStringDot1(bytes); }
inline QString shownPath(const fs::path& path) { return QString::fromStdString(path.native()); }

enum Row : int { cachesRow, languagesRow, logsRow, downloadsRow, trashRow };

/// A key for the widget that has the keyboard.
inline void type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

/// Answers questions as it was told to, and remembers them; a question that it was told nothing of is cancelled.
class ToldAlerts final : public ui::AlertPresenter {
public:
    ui::AlertAnswer runModal(const ui::Alert& alert, QWidget* /*window*/) override {
        asked.push_back(alert);
        if (whileOpen) {
            whileOpen();
        }
        if (answers.empty()) {
            return {};
        }
        const auto answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::deque<ui::AlertAnswer> answers;
    std::vector<ui::Alert> asked;
    std::function<void()> whileOpen;  ///< what happens while a question is open
};

/// Remembers what it was asked for, by any thread.
class Requests {
public:
    [[nodiscard]] std::vector<std::string> asked() const {
        const std::lock_guard guard(mutex_);
        return asked_;
    }

protected:
    bool note(const std::string& request, bool answer) {
        const std::lock_guard guard(mutex_);
        asked_.push_back(request);
        return answer;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> asked_;
};

/// Takes what it is asked to show or not, as it was told to.
class ToldFileBrowser final : public platform::FileBrowser, public Requests {
public:
    bool showItem(const fs::path& path) override { return note("item " + path.native(), answers); }
    bool showItemProperties(const fs::path& path) override { return note("properties " + path.native(), answers); }
    bool openFolder(const fs::path& folder) override { return note("folder " + folder.native(), opens); }
    void giveUp() override {}

    std::atomic<bool> answers = true;  ///< to requests to show an item
    std::atomic<bool> opens = true;    ///< folders
};

/// Takes what it is asked to open or not, as it was told to.
class ToldWorkspace final : public platform::Workspace, public Requests {
public:
    bool openURL(const std::string& url) override { return note(url, opens); }
    void announceStart() override { ++announced; }
    void giveUp() override {}
    [[nodiscard]] std::vector<std::string> opened() const { return asked(); }

    std::atomic<bool> opens = true;
    std::atomic<int> announced = 0;
};

/// One without rights, which notes how often it was let ask for them.
class ToldRemover final : public engine::PrivilegedRemover {
public:
    void allowAskingUser() override { ++timesLet; }
    bool removeFileAtPath(const std::filesystem::path& /*path*/, const Holder& /*folder*/) override { return false; }

    std::atomic<int> timesLet = 0;
};

inline constexpr ui::AlertAnswer agree{ui::AlertAnswer::firstButton, false};

/// The real window over a made-up home folder, with settings of its own.
class WindowFixture : public testing::Test {
protected:
    void start() { start(scans()); }
    // Nothing is said of the machine's own volumes, on which others write.
    void start(engine::ScanTable table) {
        auto cleans = app::cleanOperations(remover_, history_);
        cleans.volumes = nullptr;
        start(std::move(table), std::move(cleans));
    }
    void start(engine::ScanTable table, engine::CleanTable cleans) {
        defaults_ = std::make_unique<platform::UserDefaults>(defaultsFile());
        application_ =
            std::make_unique<ui::FAppDelegate>(std::move(table), std::move(cleans),
                                               ui::FAppDelegate::Dependencies{*defaults_, alerts_, util_, languages_});
        application_->applicationDidFinishLaunching();
        window()->resize(1000, 660);
        guide_ = std::make_unique<Guide>(*application_);
    }

    void quit() {
        guide_.reset();
        application_.reset();
        defaults_.reset();
    }

    /// The scan of Caches alone.
    engine::ScanTable scans() {
        engine::ScanTable table;
        table.resetShared = [this] { containers_.reset(); };
        table.operations[Section::caches] = [this] { return std::make_shared<scanners::SChOperation>(containers_); };
        return table;
    }
    /// The scans of all sections; what the process has one of would read the home folder of the first test.
    engine::ScanTable allScans() {
        auto table = app::scanOperations();
        const auto caches = scans();
        table.resetShared = caches.resetShared;
        table.operations[Section::caches] = caches.operations[Section::caches];
        table.operations[Section::languageResources] = [this] {
            return std::make_shared<langres::SAOperation>(folder_ / "root/Applications", home_.applications());
        };
        table.operations[Section::logs] = [this] {
            return std::make_shared<scanners::SLogsOperation>(containers_, paths_);
        };
        return table;
    }

    [[nodiscard]] std::filesystem::path defaultsFile() const { return folder_ / "defaults.ini"; }
    [[nodiscard]] std::filesystem::path caches() const { return home_.caches(); }
    [[nodiscard]] ui::MainWindow* window() const { return application_->window(); }
    [[nodiscard]] ui::ListPanel* lists() const { return window()->lists(); }
    [[nodiscard]] QAbstractButton* scanButton() const { return window()->sidebar()->pbtnScan(); }
    [[nodiscard]] ui::SectionsTableView* sections() const { return window()->sidebar()->sections(); }
    /// The texts of the status panel, as an assistive client reads them: "large, small", or the small one alone.
    [[nodiscard]] QString status() const { return lists()->plashka()->spokenText(); }
    [[nodiscard]] QString subtitle(int row) const { return ofSection(row, ui::SectionListModel::subtitleRole); }
    [[nodiscard]] bool isSectionChecked(int row) const {
        return sections()->model()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    void clickSectionCheck(int row) const { guide_->clickSectionCheck(row); }
    void clickSection(int row) const { guide_->clickSection(row); }
    [[nodiscard]] QStringList names() const {
        QStringList found;
        for (int row = 0; row < guide_->list()->model()->rowCount(); ++row) {
            found.append(guide_->list()->model()->index(row, ui::ItemListModel::nameColumn).data().toString());
        }
        return found;
    }
    [[nodiscard]] bool isChecked(const QString& name) const {
        return cell(name, ItemListModel::checkColumn).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    void scan() const { ASSERT_TRUE(guide_->scan(scanButton())); }
    /// Cleans with the answer "OK".
    void clean() {
        pressClean();
        awaitEndOfClean();
    }

    void startAndScan() { startAndScan(scans()); }
    void startAndScan(engine::ScanTable table) {
        start(std::move(table));
        scan();
    }
    ui::TTableView* show(int row) const {
        clickSection(row);
        return guide_->list();
    }
    [[nodiscard]] QModelIndex cell(const QString& name, int column) const {
        return guide_->list()->model()->index(guide_->row(name), column);
    }
    void select(const QString& name) const { guide_->clickCell(guide_->row(name), ItemListModel::nameColumn); }
    void clickCheckOf(const QString& name) const { guide_->clickCell(guide_->row(name), ItemListModel::checkColumn); }
    /// The name in the selected row; none without one.
    [[nodiscard]] QString selected() const {
        const auto rows = guide_->list()->selectionModel()->selectedRows(ItemListModel::nameColumn);
        return rows.isEmpty() ? QString() : rows.first().data().toString();
    }
    [[nodiscard]] Qt::CheckState selectAllState() const { return lists()->pbtnSelectAll()->checkState(); }

    [[nodiscard]] QString ofSection(int row, int role) const {
        return sections()->model()->index(row, 0).data(role).toString();
    }
    /// The titles of the entries, those that cannot be chosen in brackets.
    [[nodiscard]] static QStringList titlesOf(const QMenu& menu) {
        QStringList titles;
        for (const auto* action : menu.actions()) {
            if (!action->isSeparator()) {
                titles.append(action->isEnabled() ? action->text() : u"(%1)"_s.arg(action->text()));
            }
        }
        return titles;
    }
    [[nodiscard]] QString note(int row) const { return ofSection(row, ui::SectionListModel::noteRole); }
    /// Beside the list or in its place.
    [[nodiscard]] bool isSaid(const QString& text) const {
        const auto labels = lists()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->isVisible() && label->text().contains(text); });
    }
    [[nodiscard]] engine::DataMan& model() const { return application_->psectController().getAppResDS(); }
    [[nodiscard]] quint64 cleanedInTotal() const {
        return defaults_->number(ui::defaults_key::totalCleanedSize).value_or(0);
    }

    void pressClean() {
        alerts_.answers.push_back(agree);
        Guide::click(lists()->pbtnClean());
    }
    void awaitEndOfClean() const {
        ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    }
    void awaitEndOfScan() const {
        ASSERT_TRUE(Guide::waitFor([this] { return application_->bScanStarted() && !application_->pbScanning(); }));
    }
    [[nodiscard]] bool isClosedInTheEnd() const {
        return Guide::waitFor([this] { return !window()->isVisible(); });
    }

    TemporaryFolder folder_;
    SampleHome home_{folder_ / "home"};
    platform::SubstituteSystem system_{platform::System{
        [this] { return std::optional(home_.path()); }, [] { return std::string("trial"); },
        [this](const char* name) {
            return name == std::string("BRIMVAULT_TRIAL_ROOT") ? (folder_ / "root").native() : std::string();
        }}};
    scanners::ContainersFolderScannerManager containers_{home_.containers()};
    scanners::PathsGenerator paths_;
    ToldAlerts alerts_;
    ToldFileBrowser fileBrowser_;
    ToldWorkspace workspace_;
    /// The user reads German.
    langres::LanguagesManager languages_{{{QStringLiteral("de"), QStringLiteral("en")}, {}}};
    ToldRemover remover_;
    engine::RemovalHistory history_{folder_ / "state"};
    ui::UtilMod util_{alerts_, fileBrowser_, workspace_, platform::FinderPreferences::shared(), remover_, history_};
    std::unique_ptr<platform::UserDefaults> defaults_;
    std::unique_ptr<ui::FAppDelegate> application_;
    std::unique_ptr<Guide> guide_;
};

}  // namespace brimvault::tests
