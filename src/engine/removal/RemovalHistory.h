#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/model/ItemOutcome.h"

namespace brimvault::engine {

/// A history for the user of what was removed and what could not be: in a file, one JSON object to a line, as README.md
/// describes it. Any thread; nothing blocks but `waitUntilWritten`. Lines are written on a thread of its own, and those
/// that cannot be written are dropped: the history never keeps a removal from going on.
class RemovalHistory {
public:
    static constexpr std::size_t defaultMaxBytes = 1024UL * 1024;
    /// Files of at most so many bytes in the folder, which is made when there is something to write; an empty path
    /// keeps no history.
    explicit RemovalHistory(const std::filesystem::path& folder, std::size_t maxBytes = defaultMaxBytes);
    RemovalHistory(const RemovalHistory&) = delete;
    RemovalHistory& operator=(const RemovalHistory&) = delete;
    /// Waits for what is not written yet, at most for `timeout`.
    ~RemovalHistory() { (void)waitUntilWritten(); }

    /// Keeps none.
    [[nodiscard]] static RemovalHistory& none();

    /// The file that is written; empty if no history is kept at all.
    [[nodiscard]] std::filesystem::path file() const;
    /// Whether outcomes are written from now on; at first they are. What is in the file stays.
    void setKept(bool kept);

    void add(const ItemOutcome& outcome);
    /// False if something is still to be written after the timeout.
    static constexpr std::chrono::milliseconds timeout{1000};
    bool waitUntilWritten();

    /// The line for an outcome, with its line break.
    [[nodiscard]] static std::string line(const ItemOutcome& outcome, std::chrono::system_clock::time_point time);

private:
    class Writer;
    std::shared_ptr<Writer> writer_;  ///< shared with its thread, which may hang; null if no history is kept at all
};

}  // namespace brimvault::engine
