#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

#include "files/OpenFiles.h"

namespace brimvault::engine {

/// Tells which files other processes have open for writing, to whoever removes one after another: going through all
/// processes for each would take longer than the removal. One thread.
class WrittenFiles {
public:
    using Clock = std::chrono::steady_clock;
    using Source = std::function<files::OpenFiles()>;
    using Now = std::function<Clock::time_point()>;

    /// What is older than that is not relied on.
    static constexpr std::chrono::milliseconds maxAge{250};

    // No stop token: a snapshot that was broken off would call files unused that are not.
    explicit WrittenFiles(
        Source source = [] { return files::OpenFiles::now({}, files::OpenFor::writing); }, Now now = Clock::now)
        : source_(std::move(source)), now_(std::move(now)) {}

    /// As `files::OpenFiles` knows it.
    [[nodiscard]] bool isWritten(const files::FileIdentity& file) {
        const auto now = now_();
        if (!known_ || now - knownSince_ > maxAge) {
            knownSince_ = now;  // a process that is passed early may open a file while the others are looked at
            known_ = source_();
        }
        return known_->holderOf(file).has_value();
    }

private:
    const Source source_;
    const Now now_;
    std::optional<files::OpenFiles> known_;
    Clock::time_point knownSince_;
};

}  // namespace brimvault::engine
