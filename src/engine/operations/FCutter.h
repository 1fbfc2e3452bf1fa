#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "engine/model/AppItemData.h"
#include "engine/model/FFItem.h"
#include "engine/operations/FCleanProps.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::engine {

/// Where the clean driver gets its operations from. Null entries clean nothing.
struct CleanTable {
    using FileOperation = std::function<std::shared_ptr<SectionOperation>(const ItemArray&)>;

    std::function<std::shared_ptr<SectionOperation>(const ApplicationArray&, const std::shared_ptr<FCleanProps>&)>
        applications;
    PerSection<FileOperation> files;                          ///< none for Language Resources
    PrivilegedRemover* remover = &PrivilegedRemover::none();  ///< may ask the user once in every clean

    /// The engine's own operations for the four sections of files, which have the remover remove what the user may not.
    /// It outlives them.
    static CleanTable fileSections(PrivilegedRemover& remover = PrivilegedRemover::none());
};

/// The clean driver: one operation per section, one after the other, and "cleanFinished" when all have ended. One
/// thread (the main thread); the operations run and post on the queue's.
class FCutter {
public:
    explicit FCutter(CleanTable table = CleanTable::fileSections()) : table_(std::move(table)) {}

    /// What every clean of language resources respects; shared with the façade.
    [[nodiscard]] const std::shared_ptr<FCleanProps>& pclprops() const { return pclprops_; }

    /// What the user has agreed to, of each section; null for all that is ticked.
    using Agreed = PerSection<std::shared_ptr<const AgreedItems>>;

    /// None, or an empty array, cleans nothing of its section.
    void Clean(const std::optional<ApplicationArray>& pApps, const std::optional<ItemArray>& pDwn,
               const std::optional<ItemArray>& pCache, const std::optional<ItemArray>& pTrash,
               const std::optional<ItemArray>& pLogs, const Agreed& agreed = {});

    void CleanAppsRes(const std::optional<ApplicationArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanDownloads(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanCaches(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanTrash(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void CleanLogs(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    /// Posts "cleanFinished".
    static void CleanDone();

    /// Cancels everything and returns at once. A question for a password is withdrawn, also that of a single removal.
    void cancelCleanAll();
    /// Gives up what has not returned from being cancelled: what it removed by now is told, and "cleanFinished"
    /// follows. Returns at once.
    void giveUp();
    /// Whether a clean was given up, and hangs still.
    [[nodiscard]] bool isAnythingLeftBehind() const { return !pCutQue_.leftBehind().empty(); }
    /// Cancel one section's clean and wait until it has returned, or for a moment. Block the caller.
    void cancelOperationByClass(Section section) { cancelSectionAndWait(pCutQue_, section); }
    void cancelCleanAppsRes() { cancelOperationByClass(Section::languageResources); }
    void cancelCleanDownloads() { cancelOperationByClass(Section::downloads); }
    void cancelCleanCaches() { cancelOperationByClass(Section::caches); }
    void cancelCleanTrash() { cancelOperationByClass(Section::trash); }
    void cancelCleanLogs() { cancelOperationByClass(Section::logs); }

private:
    void cleanFiles(Section section, const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper);
    void enqueue(const std::shared_ptr<SectionOperation>& operation, const std::shared_ptr<Operation>& oper);

    CleanTable table_;
    Agreed agreed_;  ///< to the clean that is being put together
    std::shared_ptr<FCleanProps> pclprops_ = std::make_shared<FCleanProps>();
    OperationQueue pCutQue_{1};  ///< sections are cleaned one after another, never in parallel
};

}  // namespace brimvault::engine
