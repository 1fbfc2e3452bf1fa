#include "platform/FolderLocations.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

// A system call for a folder on a dead volume may never return, and nothing can interrupt it. So a separate thread
// makes these calls, one folder after the other. When it makes no progress within the timeout it is abandoned with that
// folder, and another thread goes on with the next one.

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

FolderLocation lookUp(const fs::path& named) {
    std::error_code unresolved;
    FolderLocation location{named, fs::weakly_canonical(named, unresolved), {}};
    if (unresolved) {
        location.resolved = named.lexically_normal();
    }
    for (fs::path folder = location.resolved;; folder = folder.parent_path()) {
        if (const auto status = files::statusOf(folder)) {
            location.folders.push_back(status->identity);
        }
        if (!folder.has_relative_path()) {
            break;
        }
    }
    std::reverse(location.folders.begin(), location.folders.end());
    return location;
}

/// Shared by the caller and the thread that looks up, which may outlive the call.
struct LookUp {
    std::mutex mutex;
    std::condition_variable progress;
    std::vector<fs::path> named;
    std::vector<FolderLocation> found;  ///< of the first ones of those named
    bool abandoned = false;
};

void work(const std::shared_ptr<LookUp>& lookUpAll) {
    for (const auto& named : lookUpAll->named) {
        auto location = lookUp(named);
        const std::lock_guard lock(lookUpAll->mutex);
        lookUpAll->found.push_back(std::move(location));
        lookUpAll->progress.notify_one();
        if (lookUpAll->abandoned) {
            return;  // the caller has gone on without this one
        }
    }
}

/// The folders in which abandoned threads hang.
class SilentFolders {
public:
    void add(const fs::path& named, const std::shared_ptr<LookUp>& hanging) {
        const std::lock_guard lock(mutex_);
        silent_[named] = hanging;
    }
    /// Whether a thread still hangs there: each holds a reference to its LookUp.
    bool contains(const fs::path& named) {
        const std::lock_guard lock(mutex_);
        const auto found = silent_.find(named);
        if (found != silent_.end() && found->second.expired()) {
            silent_.erase(found);
            return false;
        }
        return found != silent_.end();
    }
    static SilentFolders& shared() {
        static auto* const folders = new SilentFolders;  // never destroyed: threads may outlive main()
        return *folders;
    }

private:
    std::mutex mutex_;
    std::map<fs::path, std::weak_ptr<LookUp>> silent_;
};

// The locations of the first ones of those named, up to the first that does not answer.
std::vector<FolderLocation> foundInTime(std::vector<fs::path> named) {
    constexpr std::chrono::seconds timeout{1};
    const auto all = std::make_shared<LookUp>();
    all->named = std::move(named);
    const std::size_t wanted = all->named.size();
    try {
        std::thread([all] { work(all); }).detach();
    } catch (const std::system_error&) {
        work(all);  // no thread is to be had: the caller, which is not the main thread, may block
    }
    std::unique_lock lock(all->mutex);
    for (std::size_t before = 0; all->found.size() < wanted; before = all->found.size()) {
        if (!all->progress.wait_for(lock, timeout, [&] { return all->found.size() > before; })) {
            all->abandoned = true;
            SilentFolders::shared().add(all->named[all->found.size()], all);
            break;
        }
    }
    return std::move(all->found);
}

}  // namespace

bool holds(const fs::path& folder, const fs::path& inner) {
    return std::mismatch(folder.begin(), folder.end(), inner.begin(), inner.end()).first == folder.end();
}

std::vector<FolderLocation> locate(const std::vector<fs::path>& named) {
    std::vector<fs::path> open;
    std::remove_copy_if(named.begin(), named.end(), std::back_inserter(open),
                        [](const fs::path& folder) { return SilentFolders::shared().contains(folder); });
    std::map<fs::path, FolderLocation> found;
    while (!open.empty()) {
        auto locations = foundInTime(open);
        const std::size_t taken = std::min(locations.size() + 1, open.size());  // and the one that does not answer
        for (auto& location : locations) {
            found.insert_or_assign(location.named, std::move(location));
        }
        open.erase(open.begin(), open.begin() + static_cast<std::ptrdiff_t>(taken));
    }
    std::vector<FolderLocation> answer;
    for (const auto& folder : named) {
        const auto location = found.find(folder);
        answer.push_back(location != found.end() ? location->second
                                                 : FolderLocation{folder, folder.lexically_normal(), {}});
    }
    return answer;
}

}  // namespace brimvault::platform
