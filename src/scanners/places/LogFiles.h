#pragma once

#include <QRegularExpression>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <span>
#include <stop_token>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/model/FFItem.h"
#include "files/OpenFiles.h"
#include "files/trees/ReclaimableSpace.h"
#include "scanners/places/FoundPlaces.h"

namespace brimvault::scanners {

/// Which files are logs, by the rules of resources/places. One thread.
class LogNames {
public:
    /// The rules must outlive it.
    explicit LogNames(std::span<const PlaceRule> rules) : rules_(rules) {}

    /// Whether a file may be a log by its name: it fits the rule's grammar, and does not look like the journal of a
    /// database.
    [[nodiscard]] bool isLog(const PlaceRule& rule, std::string_view name) const;
    /// Whether nothing in a folder of this name is a log.
    [[nodiscard]] bool isSpared(std::string_view folder) const;

private:
    std::span<const PlaceRule> rules_;
    mutable std::unordered_map<std::string_view, QRegularExpression> grammars_;  ///< compiled, by their text
};

/// The logs that a row of places stands for: regular files of the user's own, with one name and something in them.
class LogFiles {
public:
    /// What all rows of a scan have in common.
    struct Scan {
        const LogNames& names;
        std::function<const files::OpenFiles&()> writers;  ///< asked once there is a log
        std::set<std::uint64_t>& taken;                    ///< the identities of what other rows have; grows
        std::stop_token stop;                              ///< after a stop the files are incomplete
    };

    /// Blocks as the disk does. The row outlives the files; what `scan` refers to need not.
    LogFiles(const PlaceRow& row, const Scan& scan);

    [[nodiscard]] std::size_t count() const { return count_; }
    /// The rule that found the first.
    [[nodiscard]] const PlaceRule& rule() const { return *rule_; }
    /// Bytes: of each its length, or what it takes on the disk where it has holes.
    [[nodiscard]] std::uint64_t size() const { return size_; }
    [[nodiscard]] const files::ReclaimableSpace& space() const { return space_; }
    [[nodiscard]] const std::vector<engine::ItemTargets>& targets() const { return targets_; }
    /// One of the programs that write to one of them; 0 if none is known.
    [[nodiscard]] pid_t writer() const { return writer_; }

private:
    struct Folder {
        const files::DirectoryHandle& handle;
        const std::filesystem::path& path;
        const PlaceRule& rule;
        const Scan& scan;
    };
    void take(const PlaceFolder& folder, const Scan& scan);
    void takeIn(const Folder& folder, int depth);
    void takeFile(const Folder& folder, const char* name, const files::NodeStatus& status);
    [[nodiscard]] bool isSpared(const std::filesystem::path& path, const LogNames& names) const;

    const PlaceRow& row_;
    const PlaceRule* rule_;
    std::size_t count_ = 0;
    std::uint64_t size_ = 0;
    files::ReclaimableSpace space_;
    std::vector<engine::ItemTargets> targets_;
    pid_t writer_ = 0;
};

}  // namespace brimvault::scanners
