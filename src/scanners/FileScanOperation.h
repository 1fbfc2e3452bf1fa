#pragma once

#include <functional>
#include <optional>

#include "engine/operations/SBaseOperation.h"
#include "scanners/ScanBatches.h"

namespace brimvault::scanners {

/// The base of the scans of the sections of files: lists a folder's entries, measures them and makes items of them.
class FileScanOperation : public engine::SBaseOperation {
protected:
    /// How a clean finds the item again.
    enum class Addressed {
        byPath,  ///< it carries its path
        byName   ///< it carries no path and is looked up by its name in the section's folder
    };

    /// A folder that is kept open to be listed.
    struct OpenFolder {
        const files::DirectoryHandle& handle;
        std::filesystem::path path;
        std::shared_ptr<const platform::RootPlace> root;  ///< the section's root folder that it is or lies in
    };
    using FolderBlock = std::function<void(const OpenFolder&)>;

    struct FoundFile {
        std::filesystem::path path;
        std::filesystem::path name;  ///< under which it is listed
        Addressed addressed = Addressed::byPath;
        quint64 size = 0;                                           ///< bytes; 0 if not measured yet
        std::optional<files::NodeKind> kind = {};                   ///< if already known
        std::shared_ptr<const platform::RootPlace> root = nullptr;  ///< the section's root folder that it lies in
        std::shared_ptr<const engine::FoundIn> foundIn = nullptr;   ///< if already known
        bool isDeletable = true;
        std::optional<bool> ticked = {};  ///< none: as all items of the section at first
        engine::ItemNote note = engine::ItemNote::none;
        std::optional<engine::ItemDetails> details = {};
        std::optional<files::ReclaimableSpace> space = {};  ///< what removing it frees, if already known
        quint64 identity = 0;                               ///< digest; 0 if it does not matter
    };

    explicit FileScanOperation(engine::Section section) : SBaseOperation(section) {}

    /// Calls with the path of every direct child of the folder, in directory order, until the operation is cancelled.
    /// A read error ends the listing early.
    void iterateFiles(const OpenFolder& folder, files::HiddenEntries hidden,
                      const std::function<void(const std::filesystem::path&)>& call) const;
    /// Calls with a root folder of the section, unless it is refused or was already listed under another name.
    void withRoot(const std::filesystem::path& named, const FolderBlock& call) const;
    /// Calls with a folder inside a root folder, unless it cannot be read.
    static void withFolderInside(const std::filesystem::path& path,
                                 const std::shared_ptr<const platform::RootPlace>& root, const FolderBlock& call);

    /// Creates the collector of the results, now that the number of items is known. To be called once.
    [[nodiscard]] ScanBatches& expect(qint64 items,
                                      ScanBatches::Percent beyondExpected = ScanBatches::Percent::goesOn) {
        return batches_.emplace(section(), items, beyondExpected);
    }
    /// Posts the finished notification with everything that was found.
    void sendOperationCompleted() const;
    void failed() override { sendOperationCompleted(); }

    /// Entries that are counted but not listed.
    using Skipped = std::function<bool(const std::filesystem::path& name)>;

    /// Collects every direct child of the folder, in directory order, until the operation is cancelled. Pool threads
    /// measure the next ones ahead.
    void collectFilesIn(const OpenFolder& folder, files::HiddenEntries hidden, Addressed addressed,
                        ScanBatches& batches, const Skipped& skipped = {}) const;
    /// Counts the file and adds it as an item, unless the operation is cancelled while it is measured.
    void collectFile(FoundFile found, ScanBatches& batches) const;
    /// Makes the item, with the size in `found`.
    void addItem(FoundFile found, ScanBatches& batches) const;

    /// Whether items are ticked at first.
    [[nodiscard]] virtual bool isTickedAtFirst() const { return true; }

    /// The name under which a folder of a container is listed: "com.example.app" for
    /// ".../Containers/com.example.app/Data/Library/Caches".
    [[nodiscard]] static std::filesystem::path containerName(const std::filesystem::path& inside);

private:
    /// The place of an item; consecutive items of one folder share it.
    [[nodiscard]] std::shared_ptr<const engine::FoundIn> placeOf(const FoundFile& found) const;

    std::optional<ScanBatches> batches_;
    mutable std::shared_ptr<const engine::FoundIn> lastPlace_;
};

}  // namespace brimvault::scanners
