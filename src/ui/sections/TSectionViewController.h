#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <vector>

#include "engine/notification/NotificationCenter.h"
#include "engine/removal/CPerformer.h"
#include "platform/UserDefaults.h"
#include "ui/controls/AlertPresenter.h"
#include "ui/sections/CleanStatistics.h"
#include "ui/sections/SectionListModel.h"
#include "ui/sections/SectionNotes.h"
#include "ui/sections/SectionsTableView.h"
#include "ui/services/ApplicationController.h"
#include "ui/services/DefaultsKeys.h"
#include "ui/services/MenuAction.h"

namespace brimvault::ui {

/// Drives the section list: what is ticked, what stands under each title, and the two main buttons, with their
/// confirmations and what they add to the statistics. Owns the engine. Main thread.
class TSectionViewController final : public QObject, public CheckListener {
    Q_OBJECT

public:
    /// What it works with; all of it outlives it.
    struct Dependencies {
        SectionsTableView& tableView;
        ApplicationController& application;
        platform::UserDefaults& defaults;
        AlertPresenter& alerts;
    };

    TSectionViewController(const Dependencies& dependencies, engine::ScanTable scans, engine::CleanTable cleans);

    [[nodiscard]] engine::CPerformer& performer() { return performer_; }
    [[nodiscard]] engine::DataMan& getAppResDS() { return performer_.getAppResDS(); }

    void selectRow(int row);
    [[nodiscard]] int selectedRow() const;

    /// The scan button: starts a scan, or stops the one that runs.
    void doStartScan();
    /// Begins the scan that was asked for; the one before has returned.
    void startScan();
    /// Operations of a scan, even of one that was stopped, have not returned; those that were given up do not count.
    [[nodiscard]] bool isScanReturning() const { return performer_.pscaner().isScanning(); }
    /// Sections that the scan under way has not finished yet; none while no scan runs.
    [[nodiscard]] bool isBeingScanned(engine::Section section) const;
    /// Sections that a scan starting now would take: those that are ticked and do not hang.
    [[nodiscard]] engine::PerSection<bool> toBeScanned() const;
    /// The clean button: asks and starts a clean, or stops the one that runs.
    void doStartClean();
    /// Unless the user has said that the question of a clean need not be shown. What carries a warning is asked about
    /// all the same.
    [[nodiscard]] bool isAskingBeforeCleaning() const {
        return !defaults_.boolean(defaults_key::suppressRemovalAlert).value_or(false);
    }
    void setAskingBeforeCleaning(bool ask) { defaults_.setBoolean(defaults_key::suppressRemovalAlert, !ask); }
    /// Records what a clean has freed.
    void cleanFinished();
    /// Whether the last clean has freed anything.
    [[nodiscard]] bool hasCleanFreed() const { return statistics_.hasFreed(); }
    /// How a menu is to show the actions of the two main buttons at the moment.
    [[nodiscard]] MenuItem validateMenuItem(MenuAction what) const;
    /// The check boxes of the sections can be used, or not.
    void setChecksEnabled(bool enabled) { model_.setChecksEnabled(enabled); }

    void setAllChecked();
    void setAppsChecked(bool checked) { setSectionChecked(engine::Section::languageResources, checked); }
    void setDwnsChecked(bool checked) { setSectionChecked(engine::Section::downloads, checked); }
    void setCacheChecked(bool checked) { setSectionChecked(engine::Section::caches, checked); }
    void setTrashChecked(bool checked) { setSectionChecked(engine::Section::trash, checked); }
    void setLogsChecked(bool checked) { setSectionChecked(engine::Section::logs, checked); }
    void setSectionChecked(engine::Section section, bool checked) override;
    [[nodiscard]] bool isAppsChecked() const { return checks_[engine::Section::languageResources]; }
    [[nodiscard]] bool isAnyChecked() const;
    [[nodiscard]] const engine::PerSection<bool>& checks() const { return checks_; }
    /// Bytes selected in the sections that are ticked.
    [[nodiscard]] quint64 getSize2CleanALLSel() const;
    /// The subtitle of a row.
    [[nodiscard]] QString subtitle(int row) const;

    /// The languages that a clean of language resources keeps, whenever they change.
    void changedListOfLangs(const QStringList& languages);

Q_SIGNALS:
    /// A scan has begun; what the sections in it held is forgotten, and nothing has been found yet.
    void resultsDropped();

private:
    void initChecksFromPrefs();
    void saveState2Prefs();
    void observe(const QString& name);
    void scanOfSectionFinished(engine::Section section);
    void stopScan();
    void startClean(const engine::CleanSelection& selection, const QStringList& languages);
    void mainThreadUpdateData();
    void updateSubTitlesTexts();
    void showChecks();
    void checkClicked(int row, bool checked);
    [[nodiscard]] AlertAnswer ask(const Alert& alert);
    [[nodiscard]] bool isRemovalConfirmed();

    SectionsTableView& ptableView_;
    ApplicationController& pAppDelegate_;
    platform::UserDefaults& defaults_;
    AlertPresenter& alerts_;
    SectionListModel model_;
    engine::PerSection<bool> checks_;
    QStringList neededLanguages_;
    CleanStatistics statistics_;
    engine::PerSection<quint64> lastSelected_;  ///< bytes selected in each section when the last clean started
    engine::PerSection<bool> scanning_;         ///< the scan that was begun last has not finished these
    SectionNotes notes_;
    QTimer giveUpTimer_;  ///< runs out when a scan that was stopped should have returned
    engine::CPerformer performer_;
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
