#include "ui/window/FAppDelegate.h"

#include <QApplication>
#include <QFile>
#include <QTimer>
#include <utility>

#include "engine/notification/Notifications.h"
#include "files/trees/Remove.h"
#include "platform/QuorvelFallManager.h"
#include "ui/services/DefaultsKeys.h"

namespace brimvault::ui {

using engine::Section;

FAppDelegate::FAppDelegate(engine::ScanTable scans, engine::CleanTable cleans, const Surroundings& surroundings)
    : defaults_(surroundings.defaults),
      util_(surroundings.util),
      window_(std::make_unique<MainWindow>()),
      controls_(*window_, *this),
      statusTexts_(std::make_unique<StatusTexts>(*window_->lists()->plashka(),
                                                 *window_->startPage()->ptxtStartDescClean(), defaults_)) {
    pNotCleanedController_ = std::make_unique<NotCleanedController>(window_.get());
    drawerAndSheets_ = std::make_unique<DrawerAndSheets>(*window_, *pNotCleanedController_);
    psectController_ = std::make_unique<TSectionViewController>(
        TSectionViewController::Surroundings{*window_->sidebar()->sections(), *this, surroundings.defaults,
                                             surroundings.alerts,
                                             [this] { return pLangListController_->getNeededLangsArray(); }},
        std::move(scans), std::move(cleans));
    const auto ticked = [this] { return psectController_->checks(); };
    auto& model = psectController_->getAppResDS();
    scanProgress_ = std::make_unique<SectionProgress>(model, *window_->sidebar()->pProgressScan(),
                                                      [this] { return psectController_->toBeScanned(); });
    cleanProgress_ = std::make_unique<SectionProgress>(model, *window_->lists()->pProgressClean(), ticked);
    pLangListController_ = std::make_unique<langres::LangListController>(
        surroundings.languages, defaults_,
        [this](const QStringList& languages) { psectController_->changedListOfLangs(languages); });
    window_->pDrawer()->ptableView()->setModel(pLangListController_.get());
    panels_ = std::make_unique<SectionPanels>(*window_->lists(), *psectController_, *this, util_);
    commands_ = std::make_unique<MenuCommands>(*window_, *psectController_, *panels_, *drawerAndSheets_, util_);
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
    menu_ = std::make_unique<MainMenu>(window_.get(), window_->sidebar()->pbtnMenu(), *commands_);
    window_->show();
    window_->activateWindow();
    window_->startPage()->btnStartScanButton2()->setFocus();
    QMetaObject::invokeMethod(
        this, [this] { util_.announceStart(); }, Qt::QueuedConnection);
}

void FAppDelegate::connectControls() {
    connect(psectController_.get(), &TSectionViewController::resultsDropped, this, &FAppDelegate::refreshLists);
    connect(psectController_.get(), &TSectionViewController::resultsDropped, scanProgress_.get(),
            &SectionProgress::begin);
    connect(window_->sidebar()->pbtnScan(), &QAbstractButton::clicked, psectController_.get(),
            &TSectionViewController::doStartScan);
    connect(window_->startPage()->btnStartScanButton2(), &QAbstractButton::clicked, psectController_.get(),
            &TSectionViewController::doStartScan);
    connect(window_->lists()->pbtnClean(), &QAbstractButton::clicked, psectController_.get(),
            &TSectionViewController::doStartClean);
    connect(window_->lists()->pbtnSelectAll(), &QAbstractButton::clicked, this, &FAppDelegate::toggleSelectAll);
    connect(window_->lists()->pbtnInf(), &QAbstractButton::clicked, commands_.get(), &MenuCommands::infPressed);
    connect(window_->lists()->pbtnFinder(), &QAbstractButton::clicked, commands_.get(), &MenuCommands::finderPressed);
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
        center.addObserver(engine::notification::plashkaPressed, [this](const auto&) { plashkaPressed(); }));
}

// --- Scanning ---------------------------------------------------------------------------------------------------

void FAppDelegate::setPbScanning(bool scanning) {
    dismissMenu();
    bscanningProcess_ = scanning;
    psectController_->updateChecksEnabled();
    if (scanning) {
        scanStarted();
    } else {
        scanFinished();
    }
}

void FAppDelegate::scanStarted() {
    window_->sidebar()->pProgressScan()->startAnimation();
    bScanStarted_ = true;
    controls_.enableControlsScan(false);
    initStateAsScanStarted();
}

// The list takes the place of the start page, and the focus with it: the start page's button is gone.
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
    const int row = psectController_->selectedRow();
    if (row >= 0 && row < sectionRowCount) {
        activatePanel(row);
    } else {
        psectController_->selectRow(0);
        activatePanel(0);
    }
}

// A scan that was stopped tells of its end when its operations have returned, or were given up; by then the next may be
// running, and its own end is still to come.
void FAppDelegate::mainThreadScanFinished() {
    if (!isScanReturning()) {
        if (!closing_ && psectController_->isWaitingToScan()) {
            psectController_->startScan();
        } else if (bscanningProcess_) {
            scanProgress_->complete();
            setPbScanning(false);
        }
    }
    closeWhenIdle();
}

bool FAppDelegate::isScanReturning() const { return psectController_->performer().pscaner().isScanning(); }

void FAppDelegate::scanFinished() {
    refreshLists();  // a scan that was stopped before it began has told nothing
    controls_.enableControlsScan(true);
    updateSelectAllCheck();
    window_->sidebar()->pProgressScan()->stopAnimation();
    panels_->updateTitle();
}

void FAppDelegate::refreshLists() {
    panels_->refreshLists();
    UpdateTextsAboutFreeUpSize();
}

// --- Cleaning ---------------------------------------------------------------------------------------------------

void FAppDelegate::setPbCleanning(bool cleaning) {
    dismissMenu();
    bcleaningProcess_ = cleaning;
    psectController_->updateChecksEnabled();
    if (cleaning) {
        cleanStarted();
    } else {
        cleanFinished();
        closeWhenIdle();
    }
}

void FAppDelegate::cleanStarted() {
    window_->lists()->pProgressClean()->startAnimation();
    UpdateTextsAboutFreeUpSize();
    resetNotCleanedDicts();
    pLangListController_->updateCleaningState(true);
    panels_->updateCleaningState();
    controls_.enableControlsClean(false);
}

void FAppDelegate::cleanFinished() {
    const bool focusGoes = window_->lists()->pbtnClean()->hasFocus();
    psectController_->cleanFinished();
    panels_->updateCleaningState();
    controls_.enableControlsClean(true);
    pLangListController_->updateCleaningState(false);
    updateSelectAllCheck();
    window_->lists()->pProgressClean()->stopAnimation();
    setPlashkaToSelectedState(false);
    panels_->updateTitle();
    if (focusGoes && !window_->lists()->pbtnClean()->isEnabled()) {
        focusWhatIsNext();
    }
}

// The user who has closed the window waits for it to go, not for a report.
void FAppDelegate::mainThreadCleanFinished() {
    if (!psectController_->isCleanStopped()) {
        cleanProgress_->complete();
    }
    setPbCleanning(false);
    if (closing_) {
        return;
    }
    const auto& files = notCleaned_.files;
    pNotCleanedController_->setCleanStopped(psectController_->isCleanStopped());
    pNotCleanedController_->updateNotCleanedRusultsApps(notCleaned_.applications, files[Section::downloads],
                                                        files[Section::caches], files[Section::trash],
                                                        files[Section::logs], this);
}

// To the list where there is one, as the button that had the focus can do nothing more.
void FAppDelegate::focusWhatIsNext() {
    auto* current = panels_->getCurrentSectionController();
    if (current != nullptr && current->hasItems()) {
        current->view()->setFocus();
    } else {
        window_->sidebar()->pbtnScan()->setFocus();
    }
}

// While an item is being removed nothing else begins, and nothing stops it.
void FAppDelegate::setPbRemoving(bool removing) {
    dismissMenu();
    removing_ = removing;
    psectController_->updateChecksEnabled();
    window_->sidebar()->pbtnScan()->setEnabled(!removing);
    panels_->updateCleaningState();
    updateSelectAllCheck();
    closeWhenIdle();
}

// What has become of the item its list takes in, where there still is one.
void FAppDelegate::mainThreadSingleFileRemoveFinished(const engine::Notification& heard) {
    if (removing_ && engine::getNumberPropfromNotification(heard, engine::key::success)) {
        setPbRemoving(false);
    }
}

// --- Panels -----------------------------------------------------------------------------------------------------

void FAppDelegate::activatePanel(int row) {
    drawerAndSheets_->updateButtonsForPanel(row);
    if (row >= 0 && row < sectionRowCount && bScanStarted_) {
        panels_->show(row);
    }
}

void FAppDelegate::toggleSelectAll() {
    panels_->toggleSelectAll();
    UpdateTextsAboutFreeUpSize();
}

void FAppDelegate::updateSelectAllCheck() {
    panels_->updateSelectAllButton();
    UpdateTextsAboutFreeUpSize();
}

// --- Status panel -----------------------------------------------------------------------------------------------

// It speaks of all sections, whichever list is on show.
void FAppDelegate::UpdateTextsAboutFreeUpSize() {
    if (!bScanStarted_) {
        return;
    }
    const quint64 selected = psectController_->getSize2CleanALLSel();
    using Activity = StatusTexts::Activity;
    statusTexts_->showSizes(selected, psectController_->getAppResDS().getSize2CleanALL(),
                            bcleaningProcess_ ? Activity::cleaning
                            : removing_       ? Activity::removing
                                              : Activity::none);
    if (!bcleaningProcess_) {
        window_->lists()->pbtnClean()->setEnabled(selected >= 1 && !bscanningProcess_ && !removing_);
    }
    bPlashkaStateSelectedFiles_ = true;
}

void FAppDelegate::plashkaPressed() { setPlashkaToSelectedState(!bPlashkaStateSelectedFiles_); }

void FAppDelegate::setPlashkaToSelectedState(bool selected) {
    if (bcleaningProcess_) {
        return;
    }
    if (selected) {
        UpdateTextsAboutFreeUpSize();
        statusTexts_->showHint();
    } else {
        statusTexts_->showCleanedSummary();
    }
    bPlashkaStateSelectedFiles_ = selected;
}

// --- Coming and going -------------------------------------------------------------------------------------------

// The desktop has given the program the user's attention, and there is nothing to be seen of it.
void FAppDelegate::applicationDidBecomeActive() {
    if (QGuiApplication::applicationState() == Qt::ApplicationActive && !window_->isVisible() && !closed_) {
        window_->show();
        window_->raise();
    }
}

// What runs is asked to end and the window goes once it has, so that little is cut off half-way and what was freed is
// recorded. The user does not wait long for it.
bool FAppDelegate::mayClose() {
    const bool busy = sectionControllerIsScanOrRemoveProcessPerforming() || isScanReturning();
    if (busy && !closing_) {
        closing_ = true;
        window_->setEnabled(false);
        psectController_->performer().cancelScanAll();
        psectController_->performer().cancelCleanAll();
        removedAtLastLook_ = files::entriesRemoved();
        QTimer::singleShot(engine::OperationQueue::timeToReturn, this, &FAppDelegate::giveUpWhatHangs);
    }
    closed_ = !busy;
    return closed_;
}

// Scans and cleans tell of their end as if they had returned; a single removal has nothing to tell. What is being
// removed is finished as long as it gets on.
void FAppDelegate::giveUpWhatHangs() {
    psectController_->performer().giveUpScans();
    const auto removed = files::entriesRemoved();
    if (std::exchange(removedAtLastLook_, removed) != removed) {
        QTimer::singleShot(engine::OperationQueue::timeToReturn, this, &FAppDelegate::giveUpWhatHangs);
        return;
    }
    psectController_->performer().giveUpCleans();
    if (removing_) {
        removalLeftBehind_ = true;
        setPbRemoving(false);
    }
}

void FAppDelegate::closeWhenIdle() {
    if (closing_ && !sectionControllerIsScanOrRemoveProcessPerforming() && !isScanReturning()) {
        window_->close();
    }
}

bool FAppDelegate::isAnythingLeftBehind() const {
    return removalLeftBehind_ || psectController_->performer().isAnythingLeftBehind();
}

}  // namespace brimvault::ui
