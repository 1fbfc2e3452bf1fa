#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "engine/FreedSpace.h"
#include "engine/model/ItemOutcome.h"
#include "engine/removal/Volumes.h"

namespace brimvault::engine {

/// What is selected of a volume.
struct SelectedShare {
    std::filesystem::path folder;  ///< on the volume
    std::string path;              ///< the first that its outcome tells of, in exact bytes; empty if it has several
    std::uint64_t device = 0;
    quint64 bytes = 0;
    bool standsForSeveral = false;  ///< things, so that it lies in none of the others
};

/// What several selected items free together, and none of them alone.
struct SelectedSet {
    std::vector<std::string> paths;  ///< as a share has it, of each
    std::uint64_t device = 0;
    quint64 bytes = 0;
};

/// Compares the free space of the volumes before and after a clean. Volumes are asked on threads of their own with a
/// timeout: one that does not answer in time is left out, and its thread behind. Any thread.
class FreedSpaceMeter {
public:
    /// The volumes are never destroyed.
    explicit FreedSpaceMeter(Volumes& volumes) : volumes_(volumes) {}

    /// The first reading; before anything is removed. Blocks for two seconds at most.
    void begin(std::vector<SelectedShare> selected, const std::vector<SelectedSet>& sets, const std::stop_token& stop);
    /// Hears what became of an item. Does not block.
    void add(const ItemOutcome& outcome);
    /// The second reading; after the last removal. Blocks for a few seconds at most, and ends early on a stop. None if
    /// nothing has gone, or nothing was learned.
    [[nodiscard]] std::optional<FreedSpace> end(const std::stop_token& stop);

private:
    struct Share {
        std::shared_ptr<HeldVolume> volume;
        quint64 freeBefore = 0;
        quint64 selected = 0;
        quint64 removed = 0;
    };
    struct OpenSet {
        std::uint64_t device = 0;
        quint64 bytes = 0;
        std::size_t left = 0;  ///< items that have not gone
    };

    void noteRemoved(std::uint64_t device, quint64 bytes);
    [[nodiscard]] bool hasRemovedAny() const;
    [[nodiscard]] FreedSpace compared(const std::map<std::uint64_t, quint64>& freeNow) const;
    /// The programs, for people, that have files open which were removed meanwhile and would free much of these bytes;
    /// the one with most first.
    [[nodiscard]] QStringList programsHolding(quint64 bytes, const std::set<std::uint64_t>& devices,
                                              const std::stop_token& stop) const;

    Volumes& volumes_;
    mutable std::mutex mutex_;               ///< protects what follows
    std::map<std::uint64_t, Share> shares_;  ///< by device
    std::vector<OpenSet> sets_;
    std::map<std::string, std::vector<std::size_t>> setsOf_;  ///< numbers of sets, by path
    /// Bytes by path, as they were at the first reading; 0 for what lies in something else that is selected.
    std::map<std::string, quint64> expected_;
    bool hasAnyGone_ = false;
    qsizetype emptied_ = 0;
    std::uint64_t entriesBefore_ = 0;                                ///< what this process had removed
    std::set<std::pair<std::uint64_t, std::uint64_t>> inUseBefore_;  ///< removed files, by device and inode
};

}  // namespace brimvault::engine
