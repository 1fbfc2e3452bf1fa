#include "files/trees/Measure.h"

#include <cerrno>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#include "files/walk/SharedWalk.h"

namespace brimvault::files {

namespace {

// A file can be a mount point as well as a folder. An unknown mount counts as the folder's own.
bool isOnMount(std::uint64_t mount, std::uint64_t expected) { return mount == 0 || mount == expected; }

// The sum over all visitors of one tree.
class Sum {
public:
    void add(const TreeSizes& sizes, const ReclaimableSpace& space) {
        const std::lock_guard lock(mutex_);
        space_.add(space);
        total_.logical += sizes.logical;
        total_.allocated += sizes.allocated;
        total_.regularFiles += sizes.regularFiles;
        total_.folders += sizes.folders;
    }
    [[nodiscard]] const TreeSizes& total() const { return total_; }
    [[nodiscard]] MeasuredItem item() {
        space_.settle();
        return {total_.logical, std::move(space_)};
    }

private:
    std::mutex mutex_;
    TreeSizes total_;
    ReclaimableSpace space_;
};

class SizeVisitor final : public TreeVisitor {
public:
    // Entries on other mounts are left out.
    SizeVisitor(std::uint64_t mount, Sum& sum) : mount_(mount), sum_(sum) {}
    SizeVisitor(const SizeVisitor&) = delete;
    SizeVisitor& operator=(const SizeVisitor&) = delete;
    ~SizeVisitor() override { sum_.add(sizes_, space_); }

    [[nodiscard]] std::unique_ptr<TreeVisitor> another() override {
        return std::make_unique<SizeVisitor>(mount_, sum_);
    }
    [[nodiscard]] FileVisits fileVisits() const override { return FileVisits::whileListing; }

    void onFolderEntered(const DirectoryHandle& folder) override {
        if (const auto size = sizeAt(folder.descriptor(), "")) {
            sizes_.folders += isInFirstFolder() ? 0 : size->logical;  // whose own entry lies elsewhere
            space_.add(NamedNode::of(*size));
        }
    }
    // What is neither a file nor a link has no length.
    void onFile(const DirectoryHandle& folder, const char* name, NodeKind kind) override {
        if (kind == NodeKind::other) {
            return;
        }
        const auto size = sizeAt(folder.descriptor(), name);
        if (size && isOnMount(size->mount, mount_)) {
            sizes_.logical += size->logical;
            sizes_.allocated += size->allocated;
            space_.add(NamedNode::of(*size));
            sizes_.regularFiles += kind == NodeKind::regular ? size->logical : 0;
        }
    }
    void onFolderClosed(const DirectoryHandle&, const char*, int) override {}
    void onWayLost(const char*, int) override {}

private:
    const std::uint64_t mount_;
    Sum& sum_;
    TreeSizes sizes_;
    ReclaimableSpace space_;
};

// An item: its open parent folder, and its name there.
struct HeldItem {
    DirectoryHandle folder;
    std::filesystem::path name;
};

std::optional<HeldItem> hold(const std::filesystem::path& given) {
    std::error_code ignored;
    auto path = std::filesystem::absolute(given, ignored).lexically_normal();
    if (!path.has_filename()) {
        path = path.parent_path();  // a trailing slash
    }
    auto folder = DirectoryHandle::open(path.parent_path());
    if (!folder) {
        return std::nullopt;
    }
    return HeldItem{std::move(*folder), path.has_filename() ? path.filename() : "."};
}

void measureFolder(const DirectoryHandle& parent, const char* name, std::uint64_t mount, Sum& sum,
                   const std::stop_token& stop) {
    SizeVisitor visitor(mount, sum);
    (void)SharedWalk(visitor, stop).visit(parent, name);
}

}  // namespace

TreeSizes measureContents(const std::filesystem::path& folder, const std::stop_token& stop) {
    const auto item = hold(folder);
    const auto status =
        item ? statusAt(item->folder.descriptor(), item->name.c_str()) : Result<NodeStatus>::failed(ENOENT);
    if (!status || status->kind != NodeKind::directory) {
        return {};
    }
    Sum sum;
    measureFolder(item->folder, item->name.c_str(), status->mount, sum, stop);
    return sum.total();
}

std::uint64_t measureItem(const std::filesystem::path& path, const std::stop_token& stop) {
    return measureSpace(path, stop).logical;
}

std::uint64_t measureItemAt(const DirectoryHandle& folder, const char* name, const std::stop_token& stop) {
    return measureSpaceAt(folder, name, stop).logical;
}

MeasuredItem measureSpace(const std::filesystem::path& path, const std::stop_token& stop) {
    const auto item = hold(path);
    return item ? measureSpaceAt(item->folder, item->name.c_str(), stop) : MeasuredItem{};
}

MeasuredItem measureSpaceAt(const DirectoryHandle& folder, const char* name, const std::stop_token& stop) {
    const auto status = statusAt(folder.descriptor(), name);
    const auto holder = folder.status();
    return status && holder ? measureEntry(folder, {name, status->kind}, holder->mount, stop) : MeasuredItem{};
}

MeasuredItem measureEntry(const DirectoryHandle& folder, const DirectoryEntry& entry, std::uint64_t mount,
                          const std::stop_token& stop) {
    if (entry.kind == NodeKind::directory) {
        Sum sum;
        measureFolder(folder, entry.name, mount, sum, stop);
        return sum.item();
    }
    // A mount point belongs to another file system: nothing of it counts.
    const auto size = sizeAt(folder.descriptor(), entry.name);
    if (!size || !isOnMount(size->mount, mount)) {
        return {};
    }
    MeasuredItem measured{.logical = size->logical};
    measured.space.add(NamedNode::of(*size));
    return measured;
}

}  // namespace brimvault::files
