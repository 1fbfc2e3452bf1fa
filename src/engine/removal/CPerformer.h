#pragma once

#include <QStringList>
#include <memory>

#include "engine/model/DataMan.h"
#include "engine/operations/FScaner.h"
#include "engine/removal/FCutter.h"

namespace brimvault::engine {

/// What a clean is to remove: the items that the user agreed to, by section; null for a section that is not cleaned.
using CleanSelection = FCutter::Agreed;

/// The façade that the window talks to: it owns the scan driver, the clean driver, the clean properties and the model.
/// Main thread only.
class CPerformer {
public:
    CPerformer(ScanTable scans, CleanTable cleans);

    [[nodiscard]] FScaner& pscaner() { return pscaner_; }
    [[nodiscard]] const FScaner& pscaner() const { return pscaner_; }
    [[nodiscard]] DataMan& getAppResDS() { return pdata_; }
    [[nodiscard]] const DataMan& getAppResDS() const { return pdata_; }

    /// Starts a scan of the sections whose flag is set. Cancels and waits for their running scans first, and drops
    /// their results. A section whose old scan hangs is not scanned and keeps its results.
    void Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs);
    /// What a clean of the sections whose flag is set would remove now.
    [[nodiscard]] CleanSelection selection(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) const;
    /// Starts a clean of what was ticked when the selection was made. Items found since stay, with the folders that
    /// hold them.
    void Clean(const CleanSelection& selection);
    /// Starts a clean of what is ticked now in the sections whose flag is set.
    void Clean(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
        Clean(selection(bApps, bDwn, bCache, bTrash, bLogs));
    }

    /// Give up what was cancelled and has not returned. What was found or removed until then is in the model, or posted
    /// to it.
    void giveUpScans();
    void giveUpCleans() { pcutter_.giveUp(); }
    /// Something that was given up still hangs.
    [[nodiscard]] bool isAnythingLeftBehind() const {
        return pscaner_.isAnythingLeftBehind() || pcutter_.isAnythingLeftBehind();
    }

    void cancelScanAll() { pscaner_.cancelScanAll(); }
    void cancelCleanAll() { pcutter_.cancelCleanAll(); }

    /// The languages that the next clean of language resources keeps.
    void setNeedLangs(const QStringList& languages) { pclprops_->setMpstrArrayNeededLangs(languages); }
    /// Recomputes what each application would free when these languages are kept.
    void changedListOfLangs(const QStringList& languages) { pdata_.updateResSizesForApps(languages); }

    // --- Kept for callers outside of the window: nothing in src calls these ---

    [[nodiscard]] FCutter& pcutter() { return pcutter_; }
    [[nodiscard]] FCleanProps& pclprops() { return *pclprops_; }
    [[nodiscard]] DataMan& pdata() { return pdata_; }

    void cancelScanAppsRes() { pscaner_.cancelScanApplicationsResources(); }
    void cancelScanCaches() { pscaner_.cancelScanCaches(); }
    void cancelScanDownloads() { pscaner_.cancelScanDownloads(); }
    void cancelScanTrash() { pscaner_.cancelScanTrash(); }

    void cancelCleanAppsRes() { pcutter_.cancelCleanAppsRes(); }
    void cancelCleanCaches() { pcutter_.cancelCleanCaches(); }
    void cancelCleanDownloads() { pcutter_.cancelCleanDownloads(); }
    void cancelCleanTrash() { pcutter_.cancelCleanTrash(); }

private:
    void dropResults(Section section);
    void giveUpScansOf(const std::function<bool(Section)>& chosen);

    // Destroyed last: an operation that has not returned may still post to it.
    DataMan pdata_;
    FScaner pscaner_;
    FCutter pcutter_;
    std::shared_ptr<FCleanProps> pclprops_;  ///< the cutter's own
};

}  // namespace brimvault::engine
