#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/operations/SBaseOperation.h"

namespace brimvault::engine {

/// The factories of the scan operations, put together in `app/`: the engine knows no concrete operation.
struct ScanTable {
    /// Makes a new operation; a section without a factory is not scanned.
    PerSection<std::function<std::shared_ptr<SBaseOperation>()>> operations;
    /// Called before the operations of every scan are queued, to drop the cache that they share.
    std::function<void()> resetShared;
};

/// The scan driver: one operation per chosen section, side by side, and "scanFinished" when all of them have ended.
/// One thread (the main thread); the operations run and post on the queue's.
///
/// A scan that hangs, as on a volume that does not answer, is given up if it has not returned within a timeout after
/// being cancelled. Its section is not scanned again until it has returned.
class FScaner {
public:
    explicit FScaner(ScanTable table) : table_(std::move(table)) {}

    void Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs);

    void ScanApplicationsResources(const std::shared_ptr<Operation>& done) { scan(Section::languageResources, done); }
    void ScanDownloads(const std::shared_ptr<Operation>& done) { scan(Section::downloads, done); }
    void ScanCaches(const std::shared_ptr<Operation>& done) { scan(Section::caches, done); }
    void ScanTrash(const std::shared_ptr<Operation>& done) { scan(Section::trash, done); }
    void ScanLogs(const std::shared_ptr<Operation>& done) { scan(Section::logs, done); }
    /// Posts "scanFinished".
    static void ScanDone();

    /// Cancels everything and returns at once.
    void cancelScanAll() { pque_.cancelAllOperations(); }
    /// Gives up, among the chosen sections, the scans that were cancelled and have not returned; returns at once, with
    /// their sections.
    std::vector<Section> giveUpCancelled(const std::function<bool(Section)>& chosen);
    /// Cancel one section's scan and wait until it has returned, at most `OperationQueue::returnTimeout`.
    void cancelOperationByClass(Section section) { cancelSectionAndWait(pque_, section); }
    void cancelScanApplicationsResources() { cancelOperationByClass(Section::languageResources); }
    void cancelScanDownloads() { cancelOperationByClass(Section::downloads); }
    void cancelScanCaches() { cancelOperationByClass(Section::caches); }
    void cancelScanTrash() { cancelOperationByClass(Section::trash); }

    /// Whether the operation of any section, or of this one, has not yet returned. One that was given up counts no
    /// more.
    [[nodiscard]] bool isScanning() const;
    [[nodiscard]] bool isScanning(Section section) const;
    /// Whether a scan of the section was given up and still hangs.
    [[nodiscard]] bool isHanging(Section section) const;
    /// The same of any section.
    [[nodiscard]] bool isAnythingLeftBehind() const { return !pque_.leftBehind().empty(); }

    // --- Kept for callers outside of the window: nothing in src calls these ---

    void cancelScanLogs() { cancelOperationByClass(Section::logs); }
    /// A holder per section, empty: the model has the results.
    [[nodiscard]] const ItemArray& pcfApplications() const { return holders_[Section::languageResources]; }
    [[nodiscard]] const ItemArray& pcfDownloads() const { return holders_[Section::downloads]; }
    [[nodiscard]] const ItemArray& pcfCaches() const { return holders_[Section::caches]; }
    [[nodiscard]] const ItemArray& pcfTrash() const { return holders_[Section::trash]; }
    [[nodiscard]] const ItemArray& pcfLogs() const { return holders_[Section::logs]; }

private:
    void scan(Section section, const std::shared_ptr<Operation>& done);

    ScanTable table_;
    PerSection<ItemArray> holders_;
    OperationQueue pque_;
};

}  // namespace brimvault::engine
