#pragma once

#include <QStringList>
#include <memory>

#include "engine/model/DataMan.h"
#include "engine/operations/FCutter.h"
#include "engine/operations/FScaner.h"

namespace brimvault::engine {

/// The sections that a clean is about; what the user agrees to of each that is, none of the others.
using CleanSelection = FCutter::Agreed;

/// The façade that the window talks to: it owns the scan driver, the clean driver, the clean properties and the model.
/// Main thread only.
class CPerformer {
public:
    CPerformer(ScanTable scans, CleanTable cleans);

    [[nodiscard]] FScaner& pscaner() { return pscaner_; }
    [[nodiscard]] const FScaner& pscaner() const { return pscaner_; }
    [[nodiscard]] FCutter& pcutter() { return pcutter_; }
    [[nodiscard]] FCleanProps& pclprops() { return *pclprops_; }
    [[nodiscard]] DataMan& pdata() { return pdata_; }
    [[nodiscard]] DataMan& getAppResDS() { return pdata_; }
    [[nodiscard]] const DataMan& getAppResDS() const { return pdata_; }

    /// Starts a scan of the sections whose flag is set, after any running scan of each has been cancelled and waited
    /// for, and its results dropped. Other sections keep their scans and their results, and so does one whose scan
    /// hangs: that one is not scanned.
    void Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs);
    /// What a clean of the sections whose flag is set would be about now.
    [[nodiscard]] CleanSelection selection(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) const;
    /// Starts a clean of what was ticked then. What has come since stays, and what lies in its way with it.
    void Clean(const CleanSelection& selection);
    /// Starts a clean of what the model holds for the sections whose flag is set.
    void Clean(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
        Clean(selection(bApps, bDwn, bCache, bTrash, bLogs));
    }

    /// Give up what was cancelled and has not returned. What was found or removed by now is in the model, or on its
    /// way.
    void giveUpScans();
    void giveUpCleans() { pcutter_.giveUp(); }
    /// Something that was given up hangs still.
    [[nodiscard]] bool isAnythingLeftBehind() const {
        return pscaner_.isAnythingLeftBehind() || pcutter_.isAnythingLeftBehind();
    }

    void cancelScanAll() { pscaner_.cancelScanAll(); }
    void cancelScanAppsRes() { pscaner_.cancelScanApplicationsResources(); }
    void cancelScanCaches() { pscaner_.cancelScanCaches(); }
    void cancelScanDownloads() { pscaner_.cancelScanDownloads(); }
    void cancelScanTrash() { pscaner_.cancelScanTrash(); }

    void cancelCleanAll() { pcutter_.cancelCleanAll(); }
    void cancelCleanAppsRes() { pcutter_.cancelCleanAppsRes(); }
    void cancelCleanCaches() { pcutter_.cancelCleanCaches(); }
    void cancelCleanDownloads() { pcutter_.cancelCleanDownloads(); }
    void cancelCleanTrash() { pcutter_.cancelCleanTrash(); }

    /// The languages that the next clean of language resources keeps.
    void setNeedLangs(const QStringList& languages) { pclprops_->setMpstrArrayNeededLangs(languages); }
    /// Recomputes what each application would free when these languages are kept.
    void changedListOfLangs(const QStringList& languages) { pdata_.updateResSizesForApps(languages); }

private:
    void dropResults(Section section);
    void giveUpScansOf(const std::function<bool(Section)>& chosen);

    // The model goes last: an operation that is still returning may post to it.
    DataMan pdata_;
    FScaner pscaner_;
    FCutter pcutter_;
    std::shared_ptr<FCleanProps> pclprops_;  ///< the cutter's own
};

}  // namespace brimvault::engine
