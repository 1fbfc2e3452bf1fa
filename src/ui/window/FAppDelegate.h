#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "engine/notification/Notification.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/operations/FCutter.h"
#include "engine/operations/FScaner.h"
#include "langres/LangListController.h"
#include "langres/LanguagesManager.h"
#include "platform/UserDefaults.h"
#include "ui/controls/AlertPresenter.h"
#include "ui/controls/SheetCoordinator.h"
#include "ui/report/NotCleanedController.h"
#include "ui/report/NotCleanedDictionaries.h"
#include "ui/sections/SectionProgress.h"
#include "ui/sections/TSectionViewController.h"
#include "ui/services/ApplicationController.h"
#include "ui/window/DrawerAndSheets.h"
#include "ui/window/MainMenu.h"
#include "ui/window/MainWindow.h"
#include "ui/window/MenuCommands.h"
#include "ui/window/SectionPanels.h"
#include "ui/window/StatusTexts.h"
#include "ui/window/WindowControls.h"

namespace brimvault::ui {

/// The controller of the window: it makes the parts, shows the list of the chosen section, and turns what the engine
/// tells into what the controls show. Main thread; what the engine posts from other threads is handed over.
class FAppDelegate final : public QObject, public ApplicationController, public SheetCoordinator {
    Q_OBJECT

public:
    /// What the window gets from around it; all of it outlives the window.
    struct Surroundings {
        platform::UserDefaults& defaults;            ///< settings and statistics
        AlertPresenter& alerts;                      ///< questions to the user
        UtilMod& util;                               ///< the file browser, single removals
        const langres::LanguagesManager& languages;  ///< what the system tells of the user's languages
    };

    FAppDelegate(engine::ScanTable scans, engine::CleanTable cleans, const Surroundings& surroundings);
    ~FAppDelegate() override;

    /// Brings everything to its first state and shows the window. Once.
    void applicationDidFinishLaunching();

    [[nodiscard]] MainWindow* window() const override { return window_.get(); }
    [[nodiscard]] TSectionViewController& psectController() { return *psectController_; }

    [[nodiscard]] bool pbScanning() const override { return bscanningProcess_; }
    void setPbScanning(bool scanning) override;
    [[nodiscard]] bool pbCleanning() const override { return bcleaningProcess_; }
    void setPbCleanning(bool cleaning) override;
    [[nodiscard]] bool bScanStarted() const override { return bScanStarted_; }
    [[nodiscard]] bool pbRemoving() const override { return removing_; }
    void setPbRemoving(bool removing) override;
    [[nodiscard]] bool isScanReturning() const override;

    /// Something hangs that was given up: its threads touch what a program destroys at its end, should they ever
    /// return.
    [[nodiscard]] bool isAnythingLeftBehind() const;

    void activatePanel(int row) override;
    void updateSelectAllCheck() override;
    void UpdateTextsAboutFreeUpSize() override;
    /// A sheet does not come while the drawer is out: the drawer goes first, and comes again after the sheet.
    void willModalSheetBegin(const QObject* sender) override {
        dismissMenu();
        drawerAndSheets_->willModalSheetBegin(sender);
    }
    void didModalSheetEnd(const QObject* /*sender*/) override {
        drawerAndSheets_->didModalSheetEnd(psectController_->selectedRow());
    }
    /// The reasons of the last clean, by section; of applications, how many languages were not removed.
    [[nodiscard]] const NotCleanedDictionaries& notCleaned() const { return notCleaned_; }
    [[nodiscard]] MainMenu& menu() { return *menu_; }
    [[nodiscard]] NotCleanedController& pNotCleanedController() { return *pNotCleanedController_; }

private:
    void connectControls();
    void registerObservers();
    /// Observes on any thread, handles on this one.
    void observe(const QString& name, engine::NotificationCenter::Handler handler);
    void resetNotCleanedDicts() { notCleaned_ = {}; }

    void scanStarted();
    void scanFinished();
    void mainThreadScanFinished();
    void refreshLists();
    void cleanStarted();
    void cleanFinished();
    void mainThreadCleanFinished();
    void mainThreadSingleFileRemoveFinished(const engine::Notification& heard);
    void initStateAsScanStarted();
    void showSelPanel();
    void focusWhatIsNext();

    void toggleSelectAll();

    void plashkaPressed();
    void setPlashkaToSelectedState(bool selected);

    void dismissMenu() {
        if (menu_) {
            menu_->dismiss();
        }
    }
    void applicationDidBecomeActive();
    [[nodiscard]] bool mayClose();
    void giveUpWhatHangs();
    void closeWhenIdle();

    platform::UserDefaults& defaults_;
    UtilMod& util_;
    std::unique_ptr<MainWindow> window_;
    WindowControls controls_;
    std::unique_ptr<StatusTexts> statusTexts_;
    std::unique_ptr<TSectionViewController> psectController_;
    std::unique_ptr<SectionProgress> scanProgress_;
    std::unique_ptr<SectionProgress> cleanProgress_;
    std::unique_ptr<langres::LangListController> pLangListController_;
    std::unique_ptr<SectionPanels> panels_;
    std::unique_ptr<NotCleanedController> pNotCleanedController_;
    std::unique_ptr<DrawerAndSheets> drawerAndSheets_;
    NotCleanedDictionaries notCleaned_;
    bool bscanningProcess_ = false;
    bool bcleaningProcess_ = false;
    bool removing_ = false;
    bool bScanStarted_ = false;               ///< never reset
    bool bPlashkaStateSelectedFiles_ = true;  ///< the status panel shows sizes, not the cleaned summary
    bool closing_ = false;                    ///< the user closed the window while something ran
    std::uint64_t removedAtLastLook_ = 0;     ///< entries, by the whole program, while it is closing
    bool removalLeftBehind_ = false;          ///< it hung when the window was closed
    bool closed_ = false;                     ///< the window has gone for good
    std::unique_ptr<MenuCommands> commands_;
    std::unique_ptr<MainMenu> menu_;
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
