#pragma once

#include <functional>
#include <optional>

#include "engine/operations/SBaseOperation.h"
#include "scanners/ScanBatches.h"

namespace brimvault::scanners {

/// What the scans of the sections of files share: the walk over a folder's entries, and what becomes of each of them.
class FileScanOperation : public engine::SBaseOperation {
protected:
    /// How an item is found again when it is to be removed.
    enum class Addressed {
        byPath,  ///< it carries its path
        byName   ///< it carries no path: it is the one of its name in the section's folder
    };

    /// A folder that is held open to be listed.
    struct HeldFolder {
        const files::DirectoryHandle& handle;
        std::filesystem::path path;
        std::shared_ptr<const platform::RootPlace> root;  ///< the section's root folder that it is, or lies in
    };
    using FolderBlock = std::function<void(const HeldFolder&)>;

    struct FoundFile {
        std::filesystem::path path;
        std::filesystem::path name;  ///< under which it is listed
        Addressed addressed = Addressed::byPath;
        quint64 size = 0;                                           ///< bytes; 0 when they are still to be measured
        std::optional<files::NodeKind> kind = {};                   ///< when it is known by now
        std::shared_ptr<const platform::RootPlace> root = nullptr;  ///< the section's root folder that it lies in
        std::shared_ptr<const engine::FoundIn> foundIn = nullptr;   ///< when it is known by now
    };

    explicit FileScanOperation(engine::Section section) : SBaseOperation(section) {}

    /// Calls with the path of every direct child of the folder, in the listing's order, until the operation is
    /// cancelled. A folder that is missing or cannot be read, or not to its end, gives what it gave.
    void iterateFiles(const HeldFolder& folder, files::HiddenEntries hidden,
                      const std::function<void(const std::filesystem::path&)>& call) const;
    /// Calls with a root folder of the section, unless it is refused or was listed under another name.
    void withRoot(const std::filesystem::path& named, const FolderBlock& call) const;
    /// Calls with a folder inside a root folder, unless it cannot be read.
    static void withFolderInside(const std::filesystem::path& path,
                                 const std::shared_ptr<const platform::RootPlace>& root, const FolderBlock& call);

    /// Where what is found goes, now that it is known how many items are expected. Once.
    [[nodiscard]] ScanBatches& expect(qint64 items,
                                      ScanBatches::Percent beyondExpected = ScanBatches::Percent::goesOn) {
        return batches_.emplace(section(), items, beyondExpected);
    }
    /// Posts the finished notification with everything that was found.
    void sendOperationCompleted() const;
    void failed() override { sendOperationCompleted(); }

    /// Which entries of a folder are counted and left alone.
    using Skipped = std::function<bool(const std::filesystem::path& name)>;

    /// Collects every direct child of the folder, in the listing's order, until the operation is cancelled; those that
    /// come later are measured ahead.
    void collectFilesIn(const HeldFolder& folder, files::HiddenEntries hidden, Addressed addressed,
                        ScanBatches& batches, const Skipped& skipped = {}) const;
    /// Counts the file and, unless the operation is cancelled while it is measured, adds it as an item.
    void collectFile(FoundFile found, ScanBatches& batches) const;
    /// Makes the item, with the size found.
    void addItem(const FoundFile& found, ScanBatches& batches) const;

    /// Whether items come ticked.
    [[nodiscard]] virtual bool isTickedAtFirst() const { return true; }

    /// The name under which a folder of a container is listed: "com.example.app" for
    /// ".../Containers/com.example.app/Data/Library/Caches".
    [[nodiscard]] static std::filesystem::path containerName(const std::filesystem::path& inside);

private:
    /// Where an item at a path is found; those that follow each other in one folder share it.
    [[nodiscard]] std::shared_ptr<const engine::FoundIn> placeOf(const FoundFile& found) const;

    std::optional<ScanBatches> batches_;
    mutable std::shared_ptr<const engine::FoundIn> lastPlace_;
};

}  // namespace brimvault::scanners
