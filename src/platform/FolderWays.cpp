#include "platform/FolderWays.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

// A call to the system for a folder on a dead volume may return never, and nothing can end it. So a thread of its own
// makes these calls, one folder after the other; where it makes no progress it is left behind with that folder, and
// another goes on with the next.

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

FolderWay lookUp(const fs::path& named) {
    std::error_code unresolved;
    FolderWay way{named, fs::weakly_canonical(named, unresolved), {}};
    if (unresolved) {
        way.resolved = named.lexically_normal();
    }
    for (fs::path folder = way.resolved;; folder = folder.parent_path()) {
        if (const auto status = files::statusOf(folder)) {
            way.folders.push_back(status->identity);
        }
        if (!folder.has_relative_path()) {
            break;
        }
    }
    std::reverse(way.folders.begin(), way.folders.end());
    return way;
}

/// Shared by who asks and the thread that looks up, which may outlive the question.
struct LookUp {
    std::mutex mutex;
    std::condition_variable progress;
    std::vector<fs::path> named;
    std::vector<FolderWay> found;  ///< of those named, from the first on
    bool abandoned = false;
};

void work(const std::shared_ptr<LookUp>& lookUpAll) {
    for (const auto& named : lookUpAll->named) {
        auto way = lookUp(named);
        const std::lock_guard lock(lookUpAll->mutex);
        lookUpAll->found.push_back(std::move(way));
        lookUpAll->progress.notify_one();
        if (lookUpAll->abandoned) {
            return;  // it was this one that hung
        }
    }
}

/// Which folders are waited for by threads that were left behind.
class SilentFolders {
public:
    void add(const fs::path& named, const std::shared_ptr<LookUp>& hanging) {
        const std::lock_guard lock(mutex_);
        silent_[named] = hanging;
    }
    /// Whether a thread still hangs there.
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
        static auto* const folders = new SilentFolders;  // outlives the threads
        return *folders;
    }

private:
    std::mutex mutex_;
    std::map<fs::path, std::weak_ptr<LookUp>> silent_;
};

// Those named, from the first on, up to the first that does not answer.
std::vector<FolderWay> foundInTime(std::vector<fs::path> named) {
    constexpr std::chrono::seconds patience{1};
    const auto all = std::make_shared<LookUp>();
    all->named = std::move(named);
    const std::size_t wanted = all->named.size();
    try {
        std::thread([all] { work(all); }).detach();
    } catch (const std::system_error&) {
        work(all);  // there are no more threads to be had; who asks is not the main one
    }
    std::unique_lock lock(all->mutex);
    for (std::size_t before = 0; all->found.size() < wanted; before = all->found.size()) {
        if (!all->progress.wait_for(lock, patience, [&] { return all->found.size() > before; })) {
            all->abandoned = true;
            SilentFolders::shared().add(all->named[all->found.size()], all);
            break;
        }
    }
    return std::move(all->found);
}

}  // namespace

std::vector<FolderWay> waysOf(const std::vector<fs::path>& named) {
    std::vector<fs::path> open;
    std::remove_copy_if(named.begin(), named.end(), std::back_inserter(open),
                        [](const fs::path& folder) { return SilentFolders::shared().contains(folder); });
    std::map<fs::path, FolderWay> found;
    while (!open.empty()) {
        auto ways = foundInTime(open);
        const std::size_t taken = std::min(ways.size() + 1, open.size());  // with the one that is silent
        for (auto& way : ways) {
            found.insert_or_assign(way.named, std::move(way));
        }
        open.erase(open.begin(), open.begin() + static_cast<std::ptrdiff_t>(taken));
    }
    std::vector<FolderWay> answer;
    for (const auto& folder : named) {
        const auto way = found.find(folder);
        answer.push_back(way != found.end() ? way->second : FolderWay{folder, folder.lexically_normal(), {}});
    }
    return answer;
}

}  // namespace brimvault::platform
