#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "app/CleanOperations.h"
#include "app/scan/ScanOperations.h"
#include "platform/System.h"
#include "platform/UserDefaults.h"
#include "trial/Guide.h"
#include "ui/window/FAppDelegate.h"

namespace brimvault::bench {

/// A system with a home folder and a root made for a trial: nothing of the machine's own is read.
inline platform::System trialSystem(const std::filesystem::path& home, const std::filesystem::path& root) {
    return {[home] { return std::optional(home); }, [] { return std::string("trial"); },
            [root](const char* name) {
                return name == std::string("BRIMVAULT_TRIAL_ROOT") ? root.native() : std::string();
            }};
}

/// One start of the program: the real window, which agrees to every question, without a desktop. Main thread.
class TrialWindow {
public:
    explicit TrialWindow(const std::filesystem::path& settings) : defaults_(settings) {
        application_.applicationDidFinishLaunching();
        window()->resize(1000, 660);
    }

    [[nodiscard]] ui::MainWindow* window() const { return application_.window(); }
    [[nodiscard]] const trial::Guide& guide() const { return guide_; }
    [[nodiscard]] ui::TTableView* list() const { return guide_.list(); }
    [[nodiscard]] ui::FAppDelegate& application() { return application_; }

    void startScan() {
        auto* first = window()->startPage()->btnStartScanButton2();
        trial::Guide::click(first->isVisible() ? static_cast<QAbstractButton*>(first)
                                               : window()->sidebar()->pbtnScan());
    }
    [[nodiscard]] bool isScanning() const { return application_.pbScanning() || application_.isScanReturning(); }
    void awaitScan() {
        trial::Guide::waitFor([this] { return !isScanning(); });
    }

private:
    class AgreeingAlerts final : public ui::AlertPresenter {
    public:
        ui::AlertAnswer runModal(const ui::Alert& /*alert*/, QWidget* /*window*/) override {
            return {ui::AlertAnswer::firstButton, false};
        }
    };

    class NoFileBrowser final : public platform::FileBrowser {
    public:
        bool showItem(const std::filesystem::path& /*path*/) override { return false; }
        bool showItemProperties(const std::filesystem::path& /*path*/) override { return false; }
        bool openFolder(const std::filesystem::path& /*folder*/) override { return false; }
        void giveUp() override {}
    };

    class NoWorkspace final : public platform::Workspace {
    public:
        bool openURL(const std::string& /*url*/) override { return false; }
        void announceStart() override {}
        void giveUp() override {}
    };

    platform::UserDefaults defaults_;
    AgreeingAlerts alerts_;
    NoFileBrowser fileBrowser_;
    NoWorkspace workspace_;
    ui::UtilMod util_{alerts_, fileBrowser_, workspace_};
    langres::LanguagesManager languages_{{{QStringLiteral("de"), QStringLiteral("en")}, {}}};
    ui::FAppDelegate application_{app::scanOperations(),
                                  app::cleanOperations(engine::PrivilegedRemover::none()),
                                  {defaults_, alerts_, util_, languages_}};
    trial::Guide guide_{application_};
};

}  // namespace brimvault::bench
