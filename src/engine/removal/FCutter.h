#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "engine/model/AppItemData.h"
#include "engine/model/FFItem.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/FCleanProps.h"
#include "engine/removal/MeasuringOperations.h"
#include "engine/removal/PrivilegedRemover.h"
#include "engine/removal/RemovalHistory.h"

namespace brimvault::engine {

/// The factories of the clean operations. A section whose factory is null is not cleaned.
struct CleanTable {
    using FileOperation = std::function<std::shared_ptr<SectionOperation>(const ItemArray&)>;

    std::function<std::shared_ptr<SectionOperation>(const ApplicationArray&, const std::shared_ptr<FCleanProps>&)>
        applications;
    PerSection<FileOperation> files;                          ///< none for Language Resources
    PrivilegedRemover* remover = &PrivilegedRemover::none();  ///< may ask the user for a password, once per clean
    Volumes* volumes = nullptr;  ///< of which is asked what a clean frees; null to ask none. Never destroyed
    RemovalHistory* history = &RemovalHistory::none();  ///< of what becomes of each item; outlives the operations

    /// The engine's own operations for the four sections of files. They ask the remover to remove what the user may
    /// not; it outlives them.
    static CleanTable fileSections(PrivilegedRemover& remover = PrivilegedRemover::none());
};

/// The clean driver: one operation per section, one after the other, and "cleanFinished" when all have ended; later
/// "spaceFreed", unless that cannot be told. One thread (the main thread); the operations run and post on the queues'.
class FCutter {
public:
    explicit FCutter(CleanTable table = CleanTable::fileSections()) : table_(std::move(table)) {}

    /// What every clean of language resources respects; shared with `CPerformer`.
    [[nodiscard]] const std::shared_ptr<FCleanProps>& pclprops() const { return pclprops_; }

    /// What the user has agreed to have removed, by section; null for all that is ticked.
    using Agreed = PerSection<std::shared_ptr<const AgreedItems>>;

    /// None, or an empty array, cleans nothing of its section. `shared` are the items that free something
    /// together, whether they are cleaned or not; null if that is not known.
    void Clean(const std::optional<ApplicationArray>& pApps, const std::optional<ItemArray>& pDwn,
               const std::optional<ItemArray>& pCache, const std::optional<ItemArray>& pTrash,
               const std::optional<ItemArray>& pLogs, const Agreed& agreed = {},
               const std::shared_ptr<const SharedGroups>& shared = nullptr);

    void CleanAppsRes(const std::optional<ApplicationArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanDownloads(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanCaches(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanTrash(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanLogs(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    /// Posts "cleanFinished".
    static void CleanDone();

    /// Cancels everything and returns at once. Withdraws an open question for a password, a single removal's too.
    void cancelCleanAll();
    /// No longer tells what the last clean has freed.
    void cancelMeasuring() { pMeasureQue_.cancelAllOperations(); }
    /// Gives up what was cancelled and has not returned: posts what it has removed so far, then "cleanFinished".
    /// Returns at once.
    void giveUp();
    /// Whether a clean was given up and still hangs.
    [[nodiscard]] bool isAnythingLeftBehind() const { return !pCutQue_.leftBehind().empty(); }
    /// Cancel one section's clean and wait until it has returned, at most `OperationQueue::returnTimeout`.
    void cancelOperationByClass(Section section) { cancelSectionAndWait(pCutQue_, section); }
    void cancelCleanAppsRes() { cancelOperationByClass(Section::languageResources); }
    void cancelCleanDownloads() { cancelOperationByClass(Section::downloads); }
    void cancelCleanCaches() { cancelOperationByClass(Section::caches); }
    void cancelCleanTrash() { cancelOperationByClass(Section::trash); }

    // --- Kept for callers outside of the window: nothing in src calls this ---

    void cancelCleanLogs() { cancelOperationByClass(Section::logs); }

private:
    void cleanFiles(Section section, const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void enqueue(const std::shared_ptr<SectionOperation>& operation, const std::shared_ptr<Operation>& oper);

    /// Null if nothing is to be measured.
    [[nodiscard]] std::shared_ptr<FreedSpaceMeter> beginMeasuring(const CleanedItems& items);
    void endMeasuring(const std::shared_ptr<FreedSpaceMeter>& meter);

    CleanTable table_;
    Agreed agreed_;            ///< for the clean that `Clean` is queueing
    OutcomeHandler outcomes_;  ///< the same
    std::shared_ptr<FCleanProps> pclprops_ = std::make_shared<FCleanProps>();
    OperationQueue pMeasureQue_{1};  ///< destroyed after the other, whose operations add to it
    OperationQueue pCutQue_{1};      ///< sections are cleaned one after another, never in parallel
};

}  // namespace brimvault::engine
