#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "engine/notification/Notification.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/operations/FScaner.h"
#include "engine/removal/FCutter.h"
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

/// The controller of the window: it makes the parts, shows the list of the chosen section, and turns the engine's
/// notifications into what the controls show. Main thread; what the engine posts on other threads is handed over.
///
/// What goes on is one value, the activity. `setActivity` alone changes it, and has the whole window follow.
class FAppDelegate final : public QObject, public ApplicationController, public SheetCoordinator {
    Q_OBJECT

public:
    /// What the window works with; all of it outlives the window.
    struct Dependencies {
        platform::UserDefaults& defaults;            ///< settings and statistics
        AlertPresenter& alerts;                      ///< questions to the user
        UtilMod& util;                               ///< the file browser, single removals
        const langres::LanguagesManager& languages;  ///< the user's languages, as the system names them
    };

    FAppDelegate(engine::ScanTable scans, engine::CleanTable cleans, const Dependencies& dependencies);
    ~FAppDelegate() override;

    /// Brings everything to its first state and shows the window. Once.
    void applicationDidFinishLaunching();

    [[nodiscard]] MainWindow* window() const override { return window_.get(); }
    [[nodiscard]] TSectionViewController& psectController() { return psectController_; }

    [[nodiscard]] Activity activity() const override { return activity_; }
    void setActivity(Activity next) override;
    [[nodiscard]] bool bScanStarted() const override { return bScanStarted_; }
    [[nodiscard]] bool isScanReturning() const override { return psectController_.isScanReturning(); }

    /// Something that was given up still hangs: should its threads ever return, they touch what a program destroys at
    /// its end.
    [[nodiscard]] bool isAnythingLeftBehind() const;

    void activatePanel(int row) override;
    void updateSelectAllCheck() override;
    void UpdateTextsAboutFreeUpSize() override;
    /// No sheet is shown while the drawer is open: the drawer closes first, and opens again after the sheet.
    void willModalSheetBegin(const QObject* sender) override {
        menu_.dismiss();
        drawerAndSheets_.willModalSheetBegin(sender);
    }
    void didModalSheetEnd(const QObject* /*sender*/) override {
        drawerAndSheets_.didModalSheetEnd(psectController_.selectedRow());
    }
    /// The reasons of the last clean, by section; of applications, how many languages were not removed.
    [[nodiscard]] const NotCleanedDictionaries& notCleaned() const { return notCleaned_; }
    [[nodiscard]] MainMenu& menu() { return menu_; }
    [[nodiscard]] NotCleanedController& pNotCleanedController() { return pNotCleanedController_; }

private:
    void connectControls();
    void registerObservers();
    /// Handles on the main thread what is posted on any.
    void observe(const QString& name, engine::NotificationCenter::Handler handler);
    void resetNotCleanedDicts() { notCleaned_ = {}; }

    void renderActivity(Activity before);
    void leave(Activity work);
    void enter(Activity work);
    void scanStarted();
    void scanFinished();
    void mainThreadScanFinished();
    void refreshLists();
    void cleanStarted();
    void cleanFinished();
    void mainThreadCleanFinished();
    void mainThreadSpaceFreed(const engine::Notification& heard);
    void forgetFreed();
    void mainThreadSingleFileRemoveFinished(const engine::Notification& heard);
    void initStateAsScanStarted();
    void showSelPanel();
    void moveFocusFromClean();

    void toggleSelectAll();

    void showSizes();
    void sharedSpaceFound();
    void plashkaPressed();
    void setPlashkaToSelectedState(bool selected);

    void applicationDidBecomeActive();
    [[nodiscard]] bool mayClose();
    void giveUpWhatHangs();
    void closeWhenIdle();

    Activity activity_ = Activity::idle;
    bool closeRequested_ = false;             ///< the user closed the window while something ran
    bool bScanStarted_ = false;               ///< never reset
    bool showsFreed_ = false;                 ///< no scan has begun since the last clean
    bool bPlashkaStateSelectedFiles_ = true;  ///< the status panel shows sizes, not the cleaned summary
    std::uint64_t removedAtLastLook_ = 0;     ///< entries, by the whole program, while it is closing
    NotCleanedDictionaries notCleaned_;
    // In the order in which they are made: each uses only those above it. What the model posts meanwhile changes
    // nothing on show, as no scan has been started.
    platform::UserDefaults& defaults_;
    UtilMod& util_;
    std::unique_ptr<MainWindow> window_;
    StatusTexts statusTexts_;
    NotCleanedController pNotCleanedController_;
    DrawerAndSheets drawerAndSheets_;
    TSectionViewController psectController_;
    engine::CPerformer& performer_;  ///< the section controller's
    langres::LangListController pLangListController_;
    SectionProgress scanProgress_;
    SectionProgress cleanProgress_;
    SectionPanels panels_;
    WindowControls controls_;
    MenuCommands commands_;
    MainMenu menu_;
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
