#pragma once

#include <gmock/gmock.h>

#include <QList>
#include <deque>
#include <memory>
#include <optional>

#include "engine/FFItem.h"
#include "engine/SBaseOperation.h"
#include "journeys/Guide.h"
#include "platform/SubstituteSystem.h"
#include "platform/UserDefaults.h"
#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/SChOperation.h"
#include "support/SampleHome.h"
#include "support/TemporaryFolder.h"
#include "ui/AlertPresenter.h"
#include "ui/FAppDelegate.h"

namespace brimvault::tests {

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

inline constexpr ui::AlertAnswer agree{ui::AlertAnswer::firstButton, false};

/// The real window over a made-up home folder, with settings of its own.
class WindowFixture : public testing::Test {
protected:
    void start() { start(scans()); }

    void start(engine::ScanTable table) {
        defaults_ = std::make_unique<platform::UserDefaults>(defaultsFile());
        application_ = std::make_unique<ui::FAppDelegate>(std::move(table), engine::CleanTable::fileSections(),
                                                          *defaults_, alerts_);
        application_->applicationDidFinishLaunching();
        window()->resize(1000, 660);
        guide_ = std::make_unique<Guide>(*application_);
    }

    void quit() {
        guide_.reset();
        application_.reset();
        defaults_.reset();
    }

    engine::ScanTable scans() {
        engine::ScanTable table;
        table.resetShared = [this] { containers_.reset(); };
        table.operations[engine::Section::caches] = [this] {
            return std::make_shared<scanners::SChOperation>(containers_);
        };
        return table;
    }

    [[nodiscard]] std::filesystem::path defaultsFile() const { return folder_ / "defaults.ini"; }
    [[nodiscard]] std::filesystem::path caches() const { return home_.caches(); }
    [[nodiscard]] ui::MainWindow* window() const { return application_->window(); }
    [[nodiscard]] ui::ListPanel* lists() const { return window()->lists(); }
    [[nodiscard]] QAbstractButton* scanButton() const { return window()->sidebar()->pbtnScan(); }
    [[nodiscard]] ui::SectionsTableView* sections() const { return window()->sidebar()->sections(); }
    [[nodiscard]] QString status() const {
        return lists()->plashka()->largeText() + QStringLiteral("|") + lists()->plashka()->smallText();
    }
    [[nodiscard]] QString subtitle(int row) const {
        return sections()->model()->index(row, 0).data(ui::SectionListModel::subtitleRole).toString();
    }
    [[nodiscard]] bool isSectionChecked(int row) const {
        return sections()->model()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    void clickSectionCheck(int row) const {
        const auto index = sections()->model()->index(row, 0);
        QTest::mouseClick(sections()->viewport(), Qt::LeftButton, {}, sections()->checkRect(index).center());
    }
    void clickSection(int row) const {
        const auto index = sections()->model()->index(row, 0);
        QTest::mouseClick(sections()->viewport(), Qt::LeftButton, {}, sections()->visualRect(index).center());
    }
    [[nodiscard]] QStringList names() const {
        QStringList found;
        for (int row = 0; row < guide_->list()->model()->rowCount(); ++row) {
            found.append(guide_->list()->model()->index(row, ui::ItemListModel::nameColumn).data().toString());
        }
        return found;
    }
    [[nodiscard]] bool isChecked(const QString& name) const {
        const auto index = guide_->list()->model()->index(guide_->row(name), ui::ItemListModel::checkColumn);
        return index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    void scan() const { ASSERT_TRUE(guide_->scan(scanButton())); }
    /// Cleans with the answer "OK".
    void clean() {
        alerts_.answers.push_back(agree);
        Guide::click(lists()->pbtnClean());
        ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    }

    TemporaryFolder folder_;
    SampleHome home_{folder_ / "home"};
    platform::SubstituteSystem system_{platform::System{[this] { return std::optional(home_.path()); },
                                                        [] { return std::string("trial"); },
                                                        [](const char*) { return std::string(); }}};
    scanners::ContainersFolderScannerManager containers_{home_.containers()};
    ToldAlerts alerts_;
    std::unique_ptr<platform::UserDefaults> defaults_;
    std::unique_ptr<ui::FAppDelegate> application_;
    std::unique_ptr<Guide> guide_;
};

}  // namespace brimvault::tests
