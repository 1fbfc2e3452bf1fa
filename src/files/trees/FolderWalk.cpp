#include "files/trees/FolderWalk.h"

#include "files/walk/TreeWalk.h"

namespace brimvault::files {

namespace {

class FolderVisitor final : public TreeVisitor {
public:
    FolderVisitor(std::filesystem::path folder, HiddenEntries hidden,
                  const std::function<Descend(const FoundFolder&)>& call)
        : current_(std::move(folder)), hidden_(hidden), call_(call) {}

    bool wantsFolder(const DirectoryHandle& parent, const char* name) override {
        if (hidden_ == HiddenEntries::skip && *name == '.') {
            return false;
        }
        entering_ = current_ / name;
        return call_({entering_, parent, name}) == Descend::yes;
    }
    void onFolderEntered(const DirectoryHandle& /*folder*/) override {
        if (!entering_.empty()) {
            current_ = std::move(entering_);
            entering_.clear();
        }
    }
    void onFile(const DirectoryHandle& /*folder*/, const char* /*name*/, NodeKind /*kind*/) override {}
    [[nodiscard]] FileVisits fileVisits() const override { return FileVisits::whileListing; }
    void onFolderLeft(const DirectoryHandle& /*parent*/, const VisitedFolder& /*folder*/,
                      const DirectoryHandle& /*left*/) override {
        current_ = current_.parent_path();
    }
    void onFolderClosed(const DirectoryHandle& /*parent*/, const char* /*name*/, int /*code*/) override {}
    void onWayLost(const char* /*name*/, int /*code*/) override {}

private:
    std::filesystem::path current_;   ///< the folder where the walk is
    std::filesystem::path entering_;  ///< the one that is about to be opened; empty once it is
    const HiddenEntries hidden_;
    const std::function<Descend(const FoundFolder&)>& call_;
};

}  // namespace

bool FoundFolder::isMountPoint() const {
    const auto status = statusAt(parent.descriptor(), name);
    const auto holder = parent.status();
    return status && holder && status->mount != 0 && status->mount != holder->mount;
}

bool forEachFolder(const std::filesystem::path& folder, HiddenEntries hidden, const std::stop_token& stop,
                   const std::function<Descend(const FoundFolder&)>& call) {
    const auto opened = DirectoryHandle::open(folder);
    return opened ? forEachFolder(*opened, folder, hidden, stop, call) : !stop.stop_requested();
}

bool forEachFolder(const DirectoryHandle& folder, const std::filesystem::path& path, HiddenEntries hidden,
                   const std::stop_token& stop, const std::function<Descend(const FoundFolder&)>& call) {
    FolderVisitor visitor(path, hidden, call);
    return TreeWalk(visitor, folder, stop).visit(".");  // it may be where a mount begins itself
}

}  // namespace brimvault::files
