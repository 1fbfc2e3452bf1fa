#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/operations/SBaseOperation.h"

namespace brimvault::engine {

/// Where the scan driver gets its operations from: put together where the program is, since the engine knows none.
struct ScanTable {
    /// Makes a fresh operation; a section without one is not scanned.
    PerSection<std::function<std::shared_ptr<SBaseOperation>()>> operations;
    /// Called before the operations of every scan are queued, to forget what they share.
    std::function<void()> resetShared;
};

/// The scan driver: one operation per chosen section, side by side, and "scanFinished" when all of them have ended.
/// One thread (the main thread); the operations run and post on the queue's.
///
/// A scan that hangs, as on a volume that does not answer, is given up when it has been cancelled and waited for in
/// vain. Its section is not scanned again until it has returned.
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
    /// Gives up, of the sections chosen, the scans that were cancelled and have not returned; returns at once, with
    /// their sections.
    std::vector<Section> giveUpCancelled(const std::function<bool(Section)>& chosen);
    /// Cancel one section's scan and wait until it has returned, or for a moment. Block the caller.
    void cancelOperationByClass(Section section) { cancelSectionAndWait(pque_, section); }
    void cancelScanApplicationsResources() { cancelOperationByClass(Section::languageResources); }
    void cancelScanDownloads() { cancelOperationByClass(Section::downloads); }
    void cancelScanCaches() { cancelOperationByClass(Section::caches); }
    void cancelScanTrash() { cancelOperationByClass(Section::trash); }
    void cancelScanLogs() { cancelOperationByClass(Section::logs); }

    /// Whether the operation of any section, or of this one, has not yet returned, other than one that was given up.
    [[nodiscard]] bool isScanning() const;
    [[nodiscard]] bool isScanning(Section section) const;
    /// Whether a scan of the section was given up, and hangs still.
    [[nodiscard]] bool isHanging(Section section) const;
    /// Whether one of any section does.
    [[nodiscard]] bool isAnythingLeftBehind() const { return !pque_.leftBehind().empty(); }

    /// A holder per section, empty: the results are the model's.
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
