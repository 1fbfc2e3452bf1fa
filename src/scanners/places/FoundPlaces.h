#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "platform/SectionRoots.h"
#include "scanners/places/PlaceRule.h"

namespace brimvault::scanners {

/// A folder that stays, and whose contents a row stands for.
struct PlaceFolder {
    const PlaceRule* rule;
    std::filesystem::path path;
    files::NodePlace place;  ///< to recognise it when it is opened again
};

/// A row of places outside of the caches folders.
struct PlaceRow {
    const PlaceRule* rule;       ///< the first of its rules
    std::filesystem::path path;  ///< of what that rule matched
    PlaceAnswer answer;
    engine::ItemNote note;
    PlaceRunning running;
    std::string package;               ///< its identifier in its package system; empty if it is from none
    std::string application;           ///< the name of its profile's or its logs' folder, else the identifier; or empty
    std::filesystem::path profile;     ///< the folder of its profiles; empty for other rows
    std::vector<PlaceFolder> folders;  ///< none for a row that stands for its path
    std::shared_ptr<const platform::RootPlace> root;  ///< where the rule's base led
};

/// Looks for everything that the rules match outside of the caches folders. What a rule spares, and what lies in it, is
/// not among the rows. Blocks as the disk does; not on the main thread.
class FoundPlaces {
public:
    FoundPlaces(std::span<const PlaceRule> rules, const std::stop_token& stop);

    [[nodiscard]] const std::vector<PlaceRow>& rows() const { return rows_; }
    /// Whether a row's path lies in the folder.
    [[nodiscard]] bool isAnyIn(const std::filesystem::path& folder) const;
    /// Takes a folder that is listed by itself out of all rows.
    void leaveOut(const files::NodePlace& folder);
    /// Removes the rows whose path is the one given or lies below it, and tells the strictest of them. None if there is
    /// none.
    std::optional<PlaceRow> take(const std::filesystem::path& path);

private:
    struct Base;
    using ProfileFolders = std::map<std::filesystem::path, const PlaceRule*>;

    [[nodiscard]] const Base* base(PlaceBase base);
    void find(const PlaceRule& rule, ProfileFolders& profiles);
    void addMatch(const PlaceRule& rule, const Base& from, std::string_view pattern, const std::filesystem::path& path,
                  const files::DirectoryHandle& folder);
    static void noteProfileFolder(const PlaceRule& finder, const std::filesystem::path& path,
                                  const files::DirectoryHandle& folder, ProfileFolders& profiles);
    void addProfileFolder(const PlaceRule& finder, const Base& from, const std::filesystem::path& path);
    /// Adds the caches that the rule matches in the profile to the row, which is made for the first.
    void addCaches(const PlaceRule& rule, const files::DirectoryHandle& profile, const std::filesystem::path& at,
                   const std::function<PlaceRow&()>& row);
    /// The row of the rule that holds the match at the path, made if there is none.
    PlaceRow& rowFor(const PlaceRule& rule, const Base& from, std::string_view pattern,
                     const std::filesystem::path& path);
    void removeSpared();
    /// A folder that several rows have whole stays in the one with the strictest answer.
    void removeRepeated();
    void removeEmptyRows();
    [[nodiscard]] bool isData(std::string_view name) const;

    std::span<const PlaceRule> rules_;
    const std::stop_token stop_;
    std::map<PlaceBase, std::shared_ptr<const Base>> bases_;  ///< null for one that is missing or refused
    std::vector<PlaceRow> rows_;
    /// Of the rows, by the rule or what joins several, their answer, and the path.
    std::map<std::tuple<std::string_view, PlaceAnswer, std::filesystem::path>, std::size_t> numbers_;
    std::vector<std::filesystem::path> spared_;
};

}  // namespace brimvault::scanners
