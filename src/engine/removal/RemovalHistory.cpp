#include "engine/removal/RemovalHistory.h"

#include <QDateTime>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

#include "files/walk/ThreadPriority.h"
#include "platform/RotatedFile.h"
#include "platform/text/JsonString.h"
#include "platform/text/PathBytes.h"

namespace brimvault::engine {

using platform::jsonString;

namespace {

constexpr std::size_t maxPathsBytes = 16UL * 1024;   // of one line, from which on paths are only counted
constexpr std::size_t chunk = 64UL * 1024;           // bytes that are written at once
constexpr std::chrono::milliseconds gathering{200};  // for which lines are gathered before they are written

}  // namespace

std::string RemovalHistory::line(const ItemOutcome& outcome, std::chrono::system_clock::time_point time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
    const auto date = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(Qt::ISODate).toStdString();
    const bool isText = std::all_of(outcome.paths.begin(), outcome.paths.end(),
                                    [](const auto& path) { return platform::isUtf8(path.native()); });
    std::string paths;
    std::size_t told = 0;
    for (; told < outcome.paths.size() && (told == 0 || paths.size() < maxPathsBytes); ++told) {
        const auto& path = outcome.paths[told].native();
        paths += told == 0 ? "" : ",";
        paths += jsonString(isText ? path : platform::percentEncoded(path));
    }
    std::string text = R"({"time":)" + jsonString(date);
    text += outcome.section ? R"(,"section":)" + jsonString(idOf(*outcome.section)) : "";
    text += outcome.paths.size() == 1 ? R"(,"path":)" + paths : R"(,"targets":[)" + paths + "]";
    text += told < outcome.paths.size() ? R"(,"moreTargets":)" + std::to_string(outcome.paths.size() - told) : "";
    text += isText ? "" : R"(,"pathEncoding":"percent")";
    text += R"(,"bytes":)" + std::to_string(outcome.bytes);
    text += !outcome.gone          ? R"(,"result":"failed","reason":)" + jsonString(outcome.reason.toStdString())
            : outcome.emptied != 0 ? R"(,"result":"emptied")"
                                   : R"(,"result":"removed")";
    return text + "}\n";
}

// --- What its thread shares with the history --------------------------------------------------------------------

class RemovalHistory::Writer : public std::enable_shared_from_this<Writer> {
public:
    // No scan of logs takes a file of this name for a log.
    Writer(const std::filesystem::path& folder, std::size_t maxBytes)
        : file_(folder, "history.jsonl", "history.old.jsonl", maxBytes),
          maxPending_(2 * maxBytes),
          maxChunk_(std::min(chunk, maxBytes)) {}

    [[nodiscard]] std::filesystem::path path() const { return file_.path(); }
    void setKept(bool kept) { isKept_ = kept; }
    void add(const ItemOutcome& outcome);
    bool waitUntilWritten();

private:
    void write();
    [[nodiscard]] std::string takeChunk();

    const platform::RotatedFile file_;
    const std::size_t maxPending_;
    const std::size_t maxChunk_;
    std::atomic<bool> isKept_ = true;
    std::mutex mutex_;  ///< protects what follows
    std::condition_variable changed_;
    std::deque<std::string> pending_;
    std::size_t pendingBytes_ = 0;
    bool isWriting_ = false;  ///< there is a thread
    int awaited_ = 0;         ///< threads that wait for it
};

// What would not stay in the files anyway is dropped first.
void RemovalHistory::Writer::add(const ItemOutcome& outcome) {
    if (!isKept_) {
        return;
    }
    auto text = line(outcome, std::chrono::system_clock::now());
    const std::lock_guard lock(mutex_);
    pendingBytes_ += text.size();
    pending_.push_back(std::move(text));
    while (pendingBytes_ > maxPending_ && pending_.size() > 1) {
        pendingBytes_ -= pending_.front().size();
        pending_.pop_front();
    }
    if (!isWriting_) {
        try {
            std::thread([self = shared_from_this()] {
                files::lowerThreadPriority();
                self->write();
            }).detach();
            isWriting_ = true;
        } catch (const std::system_error&) {  // the next outcome tries again
        }
    }
}

void RemovalHistory::Writer::write() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, gathering, [this] { return awaited_ > 0; });
    while (!pending_.empty()) {
        const auto text = takeChunk();
        lock.unlock();
        (void)file_.append(text);  // nobody could be told
        lock.lock();
    }
    isWriting_ = false;
    changed_.notify_all();
}

std::string RemovalHistory::Writer::takeChunk() {
    std::string text;
    do {
        text += pending_.front();
        pending_.pop_front();
    } while (!pending_.empty() && text.size() + pending_.front().size() <= maxChunk_);
    pendingBytes_ -= text.size();
    return text;
}

bool RemovalHistory::Writer::waitUntilWritten() {
    std::unique_lock lock(mutex_);
    ++awaited_;
    changed_.notify_all();
    const bool done = changed_.wait_for(lock, timeout, [this] { return !isWriting_; });
    --awaited_;
    return done;
}

// --- The history ------------------------------------------------------------------------------------------------

RemovalHistory::RemovalHistory(const std::filesystem::path& folder, std::size_t maxBytes)
    : writer_(folder.empty() ? nullptr : std::make_shared<Writer>(folder, maxBytes)) {}

RemovalHistory& RemovalHistory::none() {
    static RemovalHistory history({});
    return history;
}

std::filesystem::path RemovalHistory::file() const {
    return writer_ == nullptr ? std::filesystem::path() : writer_->path();
}

void RemovalHistory::setKept(bool kept) {
    if (writer_ != nullptr) {
        writer_->setKept(kept);
    }
}

void RemovalHistory::add(const ItemOutcome& outcome) {
    if (writer_ != nullptr) {
        writer_->add(outcome);
    }
}

bool RemovalHistory::waitUntilWritten() { return writer_ == nullptr || writer_->waitUntilWritten(); }

}  // namespace brimvault::engine
