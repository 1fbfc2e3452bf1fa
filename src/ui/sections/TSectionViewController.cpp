#include "ui/sections/TSectionViewController.h"

#include <algorithm>
#include <chrono>

#include "engine/model/PlaceTexts.h"
#include "engine/notification/Notifications.h"
#include "ui/sections/CleanQuestion.h"
#include "ui/sections/SectionRows.h"

namespace brimvault::ui {

using engine::Section;

namespace {

// Long enough for the user to see all sections become ticked before the scan starts.
constexpr std::chrono::milliseconds restartDelay{500};

const SectionRow& rowAt(int row) { return sectionRows()[static_cast<std::size_t>(row)]; }

}  // namespace

TSectionViewController::TSectionViewController(const Dependencies& dependencies, engine::ScanTable scans,
                                               engine::CleanTable cleans)
    : ptableView_(dependencies.tableView),
      pAppDelegate_(dependencies.application),
      defaults_(dependencies.defaults),
      alerts_(dependencies.alerts),
      statistics_(dependencies.defaults),
      performer_(std::move(scans), std::move(cleans)) {
    initChecksFromPrefs();
    showChecks();
    for (const auto& row : sectionRows()) {
        const auto words = engine::vocabulary(row.section);
        observations_.push_back(engine::NotificationCenter::defaultCenter().addObserver(
            words.interfaceFinished, [this, section = row.section](const auto&) { scanOfSectionFinished(section); }));
        observe(words.interfaceProgress);
    }
    giveUpTimer_.setSingleShot(true);
    giveUpTimer_.setInterval(engine::OperationQueue::returnTimeout);
    connect(&giveUpTimer_, &QTimer::timeout, this, [this] { performer_.giveUpScans(); });
    ptableView_.setModel(&model_);
    connect(&model_, &SectionListModel::checkRequested, this, &TSectionViewController::checkClicked);
    selectRow(0);  // before anybody hears of it: the window is not complete yet
    connect(ptableView_.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { pAppDelegate_.activatePanel(selectedRow()); });
}

void TSectionViewController::initChecksFromPrefs() {
    for (const auto& row : sectionRows()) {
        checks_[row.section] = defaults_.boolean(row.checkKey).value_or(row.checkedByDefault);
    }
}

void TSectionViewController::saveState2Prefs() {
    for (const auto& row : sectionRows()) {
        defaults_.setBoolean(row.checkKey, checks_[row.section]);
    }
}

void TSectionViewController::observe(const QString& name) {
    observations_.push_back(engine::NotificationCenter::defaultCenter().addObserver(
        name, [this](const engine::Notification&) { mainThreadUpdateData(); }));
}

// A clean posts the same notification at its end; no scan runs then.
void TSectionViewController::scanOfSectionFinished(Section section) {
    scanning_[section] = false;
    mainThreadUpdateData();
}

bool TSectionViewController::isBeingScanned(Section section) const {
    return pAppDelegate_.pbScanning() && scanning_[section];
}

engine::PerSection<bool> TSectionViewController::toBeScanned() const {
    auto sections = checks_;
    for (const Section section : engine::allSections) {
        sections[section] = checks_[section] && !performer_.pscaner().isHanging(section);
    }
    return sections;
}

void TSectionViewController::mainThreadUpdateData() {
    updateSubTitlesTexts();
    pAppDelegate_.UpdateTextsAboutFreeUpSize();
}

QString TSectionViewController::subtitle(int row) const {
    return performer_.getAppResDS().subtitle(rowAt(row).section);
}

// Until the first scan the rows keep their texts of the start.
void TSectionViewController::updateSubTitlesTexts() {
    if (!pAppDelegate_.bScanStarted()) {
        return;
    }
    for (int row = 0; row < sectionRowCount; ++row) {
        const Section section = rowAt(row).section;
        notes_.found(section, performer_.getAppResDS().count(section));
        model_.setSubtitle(row, subtitle(row));
        model_.setNote(row, notes_.text(section));
        const auto& places = performer_.getAppResDS().places(rowAt(row).section);
        model_.setPlaces(row, engine::placeTexts::all(places), engine::placeTexts::unusual(places));
    }
}

void TSectionViewController::showChecks() {
    for (int row = 0; row < sectionRowCount; ++row) {
        model_.setChecked(row, checks_[rowAt(row).section]);
    }
}

void TSectionViewController::checkClicked(int row, bool checked) {
    checks_[rowAt(row).section] = checked;
    showChecks();
    saveState2Prefs();
    mainThreadUpdateData();
}

void TSectionViewController::changedListOfLangs(const QStringList& languages) {
    neededLanguages_ = languages;
    performer_.changedListOfLangs(languages);
}

void TSectionViewController::selectRow(int row) {
    const int valid = row >= 0 && row < sectionRowCount ? row : 0;
    ptableView_.setCurrentIndex(model_.index(valid));
}

int TSectionViewController::selectedRow() const {
    const auto rows = ptableView_.selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void TSectionViewController::setAllChecked() {
    for (const auto& row : sectionRows()) {
        checks_[row.section] = true;
    }
    showChecks();
    pAppDelegate_.updateSelectAllCheck();
    updateSubTitlesTexts();
}

void TSectionViewController::setSectionChecked(Section section, bool checked) {
    if (checked && !checks_[section]) {
        checks_[section] = true;
        showChecks();
    }
    pAppDelegate_.updateSelectAllCheck();
    updateSubTitlesTexts();
}

bool TSectionViewController::isAnyChecked() const {
    return std::any_of(sectionRows().begin(), sectionRows().end(),
                       [this](const SectionRow& row) { return checks_[row.section]; });
}

quint64 TSectionViewController::getSize2CleanALLSel() const {
    return performer_.getAppResDS().getSize2CleanALLSel(checks_[Section::languageResources],
                                                        checks_[Section::downloads], checks_[Section::caches],
                                                        checks_[Section::trash], checks_[Section::logs]);
}

void TSectionViewController::doStartScan() {
    if (pAppDelegate_.pbScanning()) {
        stopScan();
        return;
    }
    if (pAppDelegate_.activity() != Activity::idle) {
        return;
    }
    if (!isAnyChecked()) {
        const Alert alert{tr("No category selected"), tr("You should select category to scan.\nSelect all and scan?")};
        if (ask(alert).returnCode == AlertAnswer::firstButton) {
            setAllChecked();
            QTimer::singleShot(restartDelay, this, [this] {
                if (!pAppDelegate_.pbScanning()) {  // the button would stop a scan that the user has started meanwhile
                    doStartScan();
                }
            });
        }
        return;
    }
    if (isScanReturning()) {
        pAppDelegate_.setActivity(Activity::awaitingScan);  // to start it now would block until the old one returns
    } else {
        startScan();
    }
}

// The controls are back at once. What has not returned in time hangs, and is given up.
void TSectionViewController::stopScan() {
    for (const Section section : engine::allSections) {
        if (performer_.pscaner().isScanning(section)) {
            notes_.scanStopped(section);
        }
    }
    pAppDelegate_.setPbScanning(false);
    performer_.cancelScanAll();
    giveUpTimer_.start();
    updateSubTitlesTexts();
}

void TSectionViewController::startScan() {
    pAppDelegate_.setPbScanning(true);
    scanning_ = toBeScanned();
    for (const Section section : engine::allSections) {
        if (scanning_[section]) {
            notes_.scanBegun(section);
        } else if (checks_[section]) {
            notes_.scanSkipped(section);
        }
    }
    performer_.Scan(checks_[Section::languageResources], checks_[Section::downloads], checks_[Section::caches],
                    checks_[Section::trash], checks_[Section::logs]);
    Q_EMIT resultsDropped();
    updateSubTitlesTexts();
}

void TSectionViewController::doStartClean() {
    if (pAppDelegate_.pbCleanning()) {
        pAppDelegate_.setActivity(Activity::stoppingClean);
        performer_.cancelCleanAll();
        return;
    }
    if (pAppDelegate_.activity() != Activity::idle) {
        return;
    }
    // While the question is open, a scan that was stopped may bring more items. The user agrees to what is ticked now.
    const auto selection =
        performer_.selection(checks_[Section::languageResources], checks_[Section::downloads], checks_[Section::caches],
                             checks_[Section::trash], checks_[Section::logs]);
    const QStringList languages = neededLanguages_;
    if (isRemovalConfirmed() && pAppDelegate_.activity() == Activity::idle) {
        startClean(selection, languages);
    }
}

// What was found while the question was open stays, and does not count as freed.
void TSectionViewController::startClean(const engine::CleanSelection& selection, const QStringList& languages) {
    statistics_.cleanStarted(getSize2CleanALLSel());
    for (const Section section : engine::allSections) {
        lastSelected_[section] = selection[section] ? performer_.getAppResDS().sums(section).selected : 0;
    }
    pAppDelegate_.setPbCleanning(true);
    performer_.setNeedLangs(languages);
    performer_.Clean(selection);
}

bool TSectionViewController::isRemovalConfirmed() {
    Alert question = cleanQuestion(performer_.getAppResDS(), checks_);
    if (!isAskingBeforeCleaning()) {
        if (question.warning.sum.isEmpty()) {
            return true;
        }
        question.suppression = Alert::Suppression::notOffered;  // it is suppressed, as far as it can be
    }
    const AlertAnswer answer = ask(question);
    if (answer.suppressed) {
        setAskingBeforeCleaning(false);
    }
    return answer.returnCode == AlertAnswer::firstButton;
}

// Events are handled while a question is open; the activity has both buttons ignored then.
AlertAnswer TSectionViewController::ask(const Alert& alert) {
    const ApplicationController::OpenQuestion open(pAppDelegate_);
    return alerts_.runModal(alert, pAppDelegate_.window());
}

MenuItem TSectionViewController::validateMenuItem(MenuAction what) const {
    const bool scanning = pAppDelegate_.pbScanning();
    const bool cleaning = pAppDelegate_.pbCleanning();
    const bool idle = pAppDelegate_.activity() == Activity::idle;
    if (what == MenuAction::doStartScan) {
        return {scanning ? tr("Stop Scanning") : tr("Scan"), idle || scanning};
    }
    const bool something = pAppDelegate_.bScanStarted() && isAnyChecked() && getSize2CleanALLSel() > 0;
    return {cleaning ? tr("Stop Cleaning") : tr("Clean"), (idle || cleaning) && something};
}

void TSectionViewController::cleanFinished() {
    statistics_.cleanFinished(getSize2CleanALLSel());
    for (const Section section : engine::allSections) {
        const auto left = performer_.getAppResDS().sums(section);
        if (left.all == 0 && lastSelected_[section] > left.selected) {
            notes_.emptied(section, lastSelected_[section] - left.selected);
        }
    }
    updateSubTitlesTexts();
}

}  // namespace brimvault::ui
