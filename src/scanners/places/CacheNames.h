#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "files/trees/MeasuredFolder.h"
#include "scanners/places/PlaceRule.h"

namespace brimvault::scanners {

/// What the rules, and what was found in it, make of one thing.
struct Judgement {
    const PlaceRule* rule = nullptr;  ///< that decided; null where none says anything
    PlaceAnswer answer = PlaceAnswer::ticked;
    engine::ItemNote note = engine::ItemNote::none;
};

/// The strictest answer of the rules whose evidence holds; then what the findings say by themselves. What is or holds a
/// mount, and what is no file, folder or link, is spared.
[[nodiscard]] Judgement judge(std::span<const PlaceRule* const> rules, const files::ItemFindings& found,
                              std::chrono::system_clock::time_point now);

/// Whether the rule says anything of what was found.
[[nodiscard]] bool holdsEvidence(const PlaceRule& rule, const files::ItemFindings& found,
                                 std::chrono::system_clock::time_point now);

/// The rules for the entries of a caches folder, whosever it is. Immutable; any thread.
class CacheNames {
public:
    /// The rules must outlive it.
    explicit CacheNames(std::span<const PlaceRule> rules);

    /// An entry, or one inside an entry that is looked into. Valid during the call.
    struct Entry {
        const files::DirectoryHandle& folder;  ///< in which it lies
        const std::filesystem::path& folderPath;
        const char* name;
        files::NodeKind kind;
        std::string_view holder;     ///< the name of the entry that is looked into; empty for an entry itself
        files::ItemFindings& found;  ///< from which the call may take what is large
        Judgement judgement;         ///< never "spared"
    };
    using Call = std::function<void(const Entry&)>;
    /// Whether an entry is left alone, whatever the rules say.
    using Kept = std::function<bool(std::string_view name)>;

    /// Calls with every entry of the folder, hidden ones too, but for those that are spared; measured and judged. An
    /// entry of which a rule speaks of what is inside is looked into, one folder deep. Until a stop.
    void forEachEntry(const files::DirectoryHandle& folder, const std::filesystem::path& path,
                      const files::OpenFiles& open, const std::stop_token& stop, const Kept& isKept,
                      const Call& call) const;

private:
    struct Walk;
    using Fitting = std::vector<const PlaceRule*>;

    [[nodiscard]] Fitting fitting(std::string_view holder, std::string_view name) const;
    /// Every rule that speaks of the entry or of what would lie in it.
    [[nodiscard]] Fitting fittingAnyway(std::string_view name) const;
    [[nodiscard]] bool isLookedInto(std::string_view name) const;
    void walk(const Walk& what, const files::DirectoryHandle& folder, const std::filesystem::path& path,
              std::string_view holder) const;

    struct Pattern {
        const PlaceRule* rule;
        std::string_view name;   ///< of an entry
        std::string_view inner;  ///< of what lies in it; empty where the rule speaks of the entry itself
    };
    using Patterns = std::vector<Pattern>;
    /// Those that a name may fit, by its first letter.
    [[nodiscard]] const Patterns& patternsFor(std::string_view name) const;

    std::array<Patterns, 256> patterns_;
};

}  // namespace brimvault::scanners
