#include "ui/window/FAppDelegate.h"

#include <QApplication>
#include <QFile>
#include <QTimer>
#include <utility>

#include "engine/notification/Notifications.h"
#include "files/removal/Remove.h"
#include "platform/QuorvelFallManager.h"
#include "ui/services/DefaultsKeys.h"
#include "ui/window/FreedText.h"

namespace brimvault::ui {

using engine::Section;

FAppDelegate::FAppDelegate(engine::ScanTable scans, engine::CleanTable cleans, const Dependencies& dependencies)
    : defaults_(dependencies.defaults),
      util_(dependencies.util),
      window_(std::make_unique<MainWindow>()),
      statusTexts_(*window_->lists()->plashka(), *window_->startPage()->ptxtStartDescClean(), defaults_),
      pNotCleanedController_(window_.get()),
      drawerAndSheets_(*window_, pNotCleanedController_),
      psectController_({*window_->sidebar()->sections(), *this, dependencies.defaults, dependencies.alerts},
                       std::move(scans), std::move(cleans)),
      performer_(psectController_.performer()),
      pLangListController_(dependencies.languages, defaults_,
                           [this](const QStringList& languages) { psectController_.changedListOfLangs(languages); }),
      scanProgress_(performer_.getAppResDS(), *window_->sidebar()->pProgressScan(),
                    [this] { return psectController_.toBeScanned(); }),
      cleanProgress_(performer_.getAppResDS(), *window_->lists()->pProgressClean(),
                     [this] { return psectController_.checks(); }),
      panels_(*window_->lists(), psectController_, *this, util_),
      controls_(*window_, *this,
                [this] {
                    const auto* current = panels_.getCurrentSectionController();
                    return ControlFacts{bScanStarted_, psectController_.getSize2CleanALLSel() > 0,
                                        current != nullptr && current->hasItems()};
                }),
      commands_(*window_, psectController_, panels_, drawerAndSheets_, util_, defaults_),
      menu_(window_.get(), window_->sidebar()->pbtnMenu(), commands_) {
    window_->pDrawer()->ptableView()->setModel(&pLangListController_);
    util_.setWindow(window_.get());
}

FAppDelegate::~FAppDelegate() { util_.waitUntilIdle(); }

void FAppDelegate::applicationDidFinishLaunching() {
    window_->pbtnLangs()->hide();
    platform::QuorvelFallManager::start(QFile::encodeName(QCoreApplication::applicationDirPath()).toStdString());
    defaults_.increase(defaults_key::launchNumber);
    resetNotCleanedDicts();
    connectControls();
    activatePanel(0);  // before the first scan there is no list to show
    registerObservers();
    defaults_.setNumber(defaults_key::lastCleanedSize, 0);
    controls_.setImgs4Scan(true);
    controls_.setImgs4Clean(true);
    window_->show();
    window_->activateWindow();
    window_->startPage()->btnStartScanButton2()->setFocus();
    util_.lookUpFolders();
    QMetaObject::invokeMethod(
        this, [this] { util_.announceStart(); }, Qt::QueuedConnection);
}

void FAppDelegate::connectControls() {
    connect(&psectController_, &TSectionViewController::resultsDropped, this, &FAppDelegate::refreshLists);
    connect(&psectController_, &TSectionViewController::resultsDropped, &scanProgress_, &SectionProgress::begin);
    connect(&panels_, &SectionPanels::currentListChanged, this, [this] { controls_.enable(); });
    connect(window_->sidebar()->pbtnScan(), &QAbstractButton::clicked, &psectController_,
            &TSectionViewController::doStartScan);
    connect(window_->startPage()->btnStartScanButton2(), &QAbstractButton::clicked, &psectController_,
            &TSectionViewController::doStartScan);
    connect(window_->lists()->pbtnClean(), &QAbstractButton::clicked, &psectController_,
            &TSectionViewController::doStartClean);
    connect(window_->lists()->pbtnSelectAll(), &QAbstractButton::clicked, this, &FAppDelegate::toggleSelectAll);
    connect(window_->lists()->pbtnInf(), &QAbstractButton::clicked, &commands_, &MenuCommands::infPressed);
    connect(window_->lists()->pbtnFinder(), &QAbstractButton::clicked, &commands_, &MenuCommands::finderPressed);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &FAppDelegate::applicationDidBecomeActive);
    window_->setMayClose([this] { return mayClose(); });
}

void FAppDelegate::observe(const QString& name, engine::NotificationCenter::Handler handler) {
    observations_.push_back(
        engine::NotificationCenter::defaultCenter().addMainThreadObserver(name, this, std::move(handler)));
}

void FAppDelegate::registerObservers() {
    observe(engine::notification::scanFinished, [this](const auto&) { mainThreadScanFinished(); });
    observe(engine::notification::cleanFinished, [this](const auto&) { mainThreadCleanFinished(); });
    observe(engine::notification::spaceFreed, [this](const auto& heard) { mainThreadSpaceFreed(heard); });
    observe(engine::notification::singleFileRemoveFinished,
            [this](const auto& heard) { mainThreadSingleFileRemoveFinished(heard); });
    for (const Section section : engine::allSections) {
        observe(engine::vocabulary(section).cleanFinished,
                [this, section](const auto& heard) { notCleaned_.take(section, heard); });
    }
    auto& center = engine::NotificationCenter::defaultCenter();
    observations_.push_back(center.addObserver(engine::notification::updateCleanableSizes,
                                               [this](const auto&) { UpdateTextsAboutFreeUpSize(); }));
    observations_.push_back(
        center.addObserver(engine::notification::sharedSpaceInterfaceUpd, [this](const auto&) { sharedSpaceFound(); }));
    observations_.push_back(
        center.addObserver(engine::notification::plashkaPressed, [this](const auto&) { plashkaPressed(); }));
}

// --- What the window is doing -----------------------------------------------------------------------------------

// Once the user has closed the window, it does not become idle again.
void FAppDelegate::setActivity(Activity next) {
    const Activity before = activity_;
    if (before == Activity::closed) {
        return;
    }
    activity_ = next == Activity::idle && closeRequested_ ? Activity::closing : next;
    if (workOf(before) != workOf(activity_)) {
        menu_.dismiss();
        leave(workOf(before));
        renderActivity(before);
        enter(workOf(activity_));
    }
    closeWhenIdle();
}

void FAppDelegate::renderActivity(Activity before) {
    const ControlStates was = controlStates(before, {});
    const ControlStates is = controlStates(activity_, {});
    if (is.sectionChecks != was.sectionChecks) {
        psectController_.setChecksEnabled(is.sectionChecks);
    }
    if (is.itemChecks != was.itemChecks) {
        panels_.updateCleaningState(!is.itemChecks);
    }
    if (is.languageChecks != was.languageChecks) {
        pLangListController_.updateCleaningState(!is.languageChecks);
    }
    controls_.render();
}

void FAppDelegate::leave(Activity work) {
    if (work == Activity::scanning) {
        scanFinished();
    } else if (work == Activity::cleaning) {
        cleanFinished();
    } else if (work == Activity::removing) {
        updateSelectAllCheck();
    }
}

void FAppDelegate::enter(Activity work) {
    if (work == Activity::scanning) {
        scanStarted();
    } else if (work == Activity::cleaning) {
        cleanStarted();
    } else if (work == Activity::removing) {
        updateSelectAllCheck();
    }
}

// --- Scanning ---------------------------------------------------------------------------------------------------

void FAppDelegate::scanStarted() {
    bScanStarted_ = true;
    forgetFreed();
    util_.trashMoves().forget();
    initStateAsScanStarted();
}

// The list replaces the start page. If its button had the focus, the scan button gets it.
void FAppDelegate::initStateAsScanStarted() {
    const bool focusGoes = window_->startPage()->btnStartScanButton2()->hasFocus();
    window_->showLists();
    showSelPanel();
    UpdateTextsAboutFreeUpSize();
    if (focusGoes) {
        window_->sidebar()->pbtnScan()->setFocus();
    }
}

void FAppDelegate::showSelPanel() {
    const int row = psectController_.selectedRow();
    if (row >= 0 && row < sectionRowCount) {
        activatePanel(row);
    } else {
        psectController_.selectRow(0);
        activatePanel(0);
    }
}

// A scan that was stopped posts its end when its operations have returned or were given up. The next may be running by
// then, and posts an end of its own.
void FAppDelegate::mainThreadScanFinished() {
    if (!isScanReturning()) {
        if (activity_ == Activity::awaitingScan && !closeRequested_) {
            psectController_.startScan();
        } else if (pbScanning()) {
            scanProgress_.complete();
            setPbScanning(false);
        }
    }
    closeWhenIdle();
}

void FAppDelegate::scanFinished() {
    refreshLists();  // a scan that was stopped before it began has posted nothing
    updateSelectAllCheck();
    panels_.updateTitle();
}

void FAppDelegate::refreshLists() {
    panels_.refreshLists();
    UpdateTextsAboutFreeUpSize();
}

// --- Cleaning ---------------------------------------------------------------------------------------------------

void FAppDelegate::cleanStarted() {
    forgetFreed();
    UpdateTextsAboutFreeUpSize();
    resetNotCleanedDicts();
}

void FAppDelegate::cleanFinished() {
    const bool focusOnClean = window_->lists()->pbtnClean()->hasFocus();
    showsFreed_ = true;
    psectController_.cleanFinished();
    updateSelectAllCheck();
    setPlashkaToSelectedState(false);
    panels_.updateTitle();
    if (focusOnClean && !window_->lists()->pbtnClean()->isEnabled()) {
        moveFocusFromClean();
    }
}

// The user who has closed the window waits for it to go, not for a report.
void FAppDelegate::mainThreadCleanFinished() {
    const bool stopped = activity_ == Activity::stoppingClean;
    if (!stopped) {
        cleanProgress_.complete();
    }
    setPbCleanning(false);
    if (activity_ != Activity::idle) {
        return;
    }
    const auto& files = notCleaned_.files;
    using End = NotCleanedController::CleanEnd;
    pNotCleanedController_.setCleanEnd(stopped                            ? End::stopped
                                       : psectController_.hasCleanFreed() ? End::tookTheRest
                                                                          : End::tookNothing);
    pNotCleanedController_.updateNotCleanedRusultsApps(notCleaned_.applications, files[Section::downloads],
                                                       files[Section::caches], files[Section::trash],
                                                       files[Section::logs], this);
}

// The figures of a clean may come when the next scan or clean is under way, which is about other items.
void FAppDelegate::mainThreadSpaceFreed(const engine::Notification& heard) {
    const auto space = engine::getPropfromNotification<engine::FreedSpace>(heard, engine::key::freedSpace);
    if (space && showsFreed_) {
        window_->lists()->setFreed(freedText(*space));
    }
}

void FAppDelegate::forgetFreed() {
    showsFreed_ = false;
    window_->lists()->setFreed({});
}

// The button can do nothing more: the list is next, where there is one.
void FAppDelegate::moveFocusFromClean() {
    auto* current = panels_.getCurrentSectionController();
    if (current != nullptr && current->hasItems()) {
        current->view()->setFocus();
    } else {
        window_->sidebar()->pbtnScan()->setFocus();
    }
}

// The list that asked for the removal, where there still is one, takes the item out by itself.
void FAppDelegate::mainThreadSingleFileRemoveFinished(const engine::Notification& heard) {
    if (pbRemoving() && engine::getNumberPropfromNotification(heard, engine::key::success)) {
        setPbRemoving(false);
    }
}

// --- Panels -----------------------------------------------------------------------------------------------------

void FAppDelegate::activatePanel(int row) {
    drawerAndSheets_.updateButtonsForPanel(row);
    if (row >= 0 && row < sectionRowCount && bScanStarted_) {
        panels_.show(row);
    }
}

void FAppDelegate::toggleSelectAll() {
    panels_.toggleSelectAll();
    UpdateTextsAboutFreeUpSize();
}

void FAppDelegate::updateSelectAllCheck() {
    panels_.updateSelectAllButton();
    UpdateTextsAboutFreeUpSize();
}

// --- Status panel -----------------------------------------------------------------------------------------------

void FAppDelegate::UpdateTextsAboutFreeUpSize() {
    if (bScanStarted_) {
        showSizes();
        controls_.enable();
    }
}

// Of all sections, whichever list is on show. What would be freed is told only once nothing changes it any more:
// assistive clients would hear of it with each batch of a scan.
void FAppDelegate::showSizes() {
    const quint64 selected = psectController_.getSize2CleanALLSel();
    statusTexts_.showSizes(selected, performer_.getAppResDS().getSize2CleanALL(), activity_, closeRequested_);
    const bool isKnown = activity_ == Activity::idle;
    statusTexts_.showFrees(selected,
                           isKnown ? performer_.getAppResDS().freesOfSelection(psectController_.checks()) : selected);
    bPlashkaStateSelectedFiles_ = true;
}

// Some time after items have come or gone; the panel may show what was cleaned by then.
void FAppDelegate::sharedSpaceFound() {
    if (bScanStarted_ && bPlashkaStateSelectedFiles_) {
        showSizes();
    }
}

void FAppDelegate::plashkaPressed() { setPlashkaToSelectedState(!bPlashkaStateSelectedFiles_); }

void FAppDelegate::setPlashkaToSelectedState(bool selected) {
    if (pbCleanning() || pbRemoving()) {
        return;  // nothing else says what is going on
    }
    if (selected) {
        UpdateTextsAboutFreeUpSize();
        statusTexts_.showHint();
    } else {
        statusTexts_.showCleanedSummary();
    }
    bPlashkaStateSelectedFiles_ = selected;
}

// --- Coming and going -------------------------------------------------------------------------------------------

// Activated while hidden: the window is shown again, unless it has gone for good.
void FAppDelegate::applicationDidBecomeActive() {
    if (QGuiApplication::applicationState() == Qt::ApplicationActive && !window_->isVisible() &&
        activity_ != Activity::closed) {
        window_->show();
        window_->raise();
    }
}

// What runs is cancelled and the window closes once it has returned, so that little is cut off half-way and what was
// freed is recorded.
bool FAppDelegate::mayClose() {
    if (!sectionControllerIsScanOrRemoveProcessPerforming() && !isScanReturning()) {
        setActivity(Activity::closed);
        return true;
    }
    if (!std::exchange(closeRequested_, true)) {
        if (activity_ == Activity::idle) {
            setActivity(Activity::closing);
        }
        window_->setEnabled(false);
        UpdateTextsAboutFreeUpSize();
        performer_.cancelScanAll();
        performer_.cancelCleanAll();
        removedAtLastLook_ = files::entriesRemoved();
        QTimer::singleShot(engine::OperationQueue::returnTimeout, this, &FAppDelegate::giveUpWhatHangs);
    }
    return false;
}

// Scans and cleans that are given up post their end as if they had returned; a single removal posts nothing. A removal
// is waited for as long as it gets on.
void FAppDelegate::giveUpWhatHangs() {
    performer_.giveUpScans();
    const auto removed = files::entriesRemoved();
    if (std::exchange(removedAtLastLook_, removed) != removed) {
        QTimer::singleShot(engine::OperationQueue::returnTimeout, this, &FAppDelegate::giveUpWhatHangs);
        return;
    }
    performer_.giveUpCleans();
    setPbRemoving(false);
}

void FAppDelegate::closeWhenIdle() {
    const bool idle = !sectionControllerIsScanOrRemoveProcessPerforming() && !isScanReturning();
    if (closeRequested_ && idle && activity_ != Activity::closed) {
        window_->close();
    }
}

bool FAppDelegate::isAnythingLeftBehind() const {
    return util_.isRemovalUnderWay() || performer_.isAnythingLeftBehind();
}

}  // namespace brimvault::ui
