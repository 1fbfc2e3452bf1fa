#include "scanners/places/CacheNames.h"

#include <algorithm>
#include <string>

#include "scanners/places/PlacePattern.h"

namespace brimvault::scanners {

namespace {

using engine::ItemNote;

constexpr std::chrono::hours aDay{24};

bool isSparedByNameAlone(const std::vector<const PlaceRule*>& rules) {
    return std::any_of(rules.begin(), rules.end(), [](const PlaceRule* rule) {
        const auto& needed = rule->evidence;
        return rule->answer == PlaceAnswer::spared && !needed.olderThanADay && !needed.youngerThanADay && !needed.open;
    });
}

bool asksForAge(const std::vector<const PlaceRule*>& rules) {
    return std::any_of(rules.begin(), rules.end(),
                       [](const PlaceRule* rule) { return rule->evidence.youngerThanADay; });
}

// When the file changed, or one that databases keep beside it: none of them is of use without the others.
std::chrono::system_clock::time_point lastChangeBeside(const files::DirectoryHandle& folder, std::string name) {
    constexpr std::array<std::string_view, 4> suffixes = {"", "-wal", "-shm", "-journal"};
    for (const auto suffix : suffixes) {
        if (!suffix.empty() && name.ends_with(suffix)) {
            name.resize(name.size() - suffix.size());
        }
    }
    std::chrono::system_clock::time_point changed;
    for (const auto suffix : suffixes) {
        const auto status = files::statusAt(folder.descriptor(), (name + std::string(suffix)).c_str());
        changed = status ? std::max(changed, status->modified) : changed;
    }
    return changed;
}

// What cannot be looked into may hold anything.
ItemNote noteOf(const files::ItemFindings& found) {
    return found.holdsUnseen                        ? ItemNote::work
           : found.holdsWorkingCopy                 ? ItemNote::copies
           : found.openBy != 0 || found.holdsSocket ? ItemNote::inUse
                                                    : ItemNote::none;
}

}  // namespace

bool holdsEvidence(const PlaceRule& rule, const files::ItemFindings& found, std::chrono::system_clock::time_point now) {
    const bool isYoung = found.changed > now - aDay;
    const auto& needed = rule.evidence;
    return (!needed.olderThanADay || !isYoung) && (!needed.youngerThanADay || isYoung) &&
           (!needed.open || found.openBy != 0);
}

Judgement judge(std::span<const PlaceRule* const> rules, const files::ItemFindings& found,
                std::chrono::system_clock::time_point now) {
    Judgement result;
    for (const auto* rule : rules) {
        if (holdsEvidence(*rule, found, now) && (result.rule == nullptr || rule->answer > result.answer)) {
            result = {rule, rule->answer, rule->note};
        }
    }
    if (found.isSpecial || found.holdsMount) {
        result.answer = PlaceAnswer::spared;
    }
    if (result.answer == PlaceAnswer::spared) {
        return result;
    }
    result.note = moreSerious(result.note, noteOf(found));
    if (result.note != ItemNote::none) {
        result.answer = PlaceAnswer::unticked;
    }
    return result;
}

struct CacheNames::Walk {
    const files::OpenFiles& open;
    const std::stop_token& stop;
    const Kept& isKept;
    const Call& call;
    std::chrono::system_clock::time_point now;
};

CacheNames::CacheNames(std::span<const PlaceRule> rules) {
    for (const auto& rule : rules) {
        for (const std::string_view pattern : rule.patterns) {
            const auto [name, inner] = firstName(pattern);
            const auto first = static_cast<unsigned char>(name.front());
            for (std::size_t letter = 0; rule.base == PlaceBase::cache && letter < patterns_.size(); ++letter) {
                if (first == '*' || first == '#' || first == letter) {
                    patterns_[letter].push_back({&rule, name, inner});
                }
            }
        }
    }
}

const CacheNames::Patterns& CacheNames::patternsFor(std::string_view name) const {
    return patterns_[name.empty() ? 0 : static_cast<unsigned char>(name.front())];
}

CacheNames::Fitting CacheNames::fitting(std::string_view holder, std::string_view name) const {
    Fitting found;
    const auto entry = holder.empty() ? name : holder;
    for (const auto& pattern : patternsFor(entry)) {
        const bool fitsInner = pattern.inner.empty() || (!holder.empty() && fits(name, pattern.inner));
        if (fitsInner && fits(entry, pattern.name)) {
            found.push_back(pattern.rule);
        }
    }
    return found;
}

CacheNames::Fitting CacheNames::fittingAnyway(std::string_view name) const {
    Fitting found;
    for (const auto& pattern : patternsFor(name)) {
        if (fits(name, pattern.name)) {
            found.push_back(pattern.rule);
        }
    }
    return found;
}

bool CacheNames::isLookedInto(std::string_view name) const {
    const auto& patterns = patternsFor(name);
    return std::any_of(patterns.begin(), patterns.end(),
                       [name](const Pattern& pattern) { return !pattern.inner.empty() && fits(name, pattern.name); });
}

void CacheNames::forEachEntry(const files::DirectoryHandle& folder, const std::filesystem::path& path,
                              const files::OpenFiles& open, const std::stop_token& stop, const Kept& isKept,
                              const Call& call) const {
    walk({open, stop, isKept, call, std::chrono::system_clock::now()}, folder, path, {});
}

void CacheNames::walk(const Walk& what, const files::DirectoryHandle& folder, const std::filesystem::path& path,
                      std::string_view holder) const {
    std::vector<std::string> lookedInto;
    const bool isCopy = files::isWorkingCopy(folder);
    const auto isLeftAlone = [&](const char* name) {
        return (holder.empty() && what.isKept(name)) || isSparedByNameAlone(fitting(holder, name));
    };
    const auto sizes = [&](const char* name) {
        const bool isWanted = !isLeftAlone(name) && !(holder.empty() && isLookedInto(name));
        return isWanted ? files::Sizes::wanted : files::Sizes::unwanted;
    };
    const auto call = [&](const files::MeasurableEntry& entry) {
        if (entry.sizes == files::Sizes::unwanted && isLeftAlone(entry.name)) {
            return true;
        }
        if (entry.sizes == files::Sizes::unwanted && entry.kind == files::NodeKind::directory) {
            lookedInto.emplace_back(entry.name);
            return true;
        }
        auto found = entry.findings();
        found.holdsWorkingCopy = found.holdsWorkingCopy || isCopy;
        // Another thing stands in the place of a folder that would be looked into: a link to it, perhaps.
        const bool isInstead = entry.sizes == files::Sizes::unwanted;
        const auto rules = isInstead ? fittingAnyway(entry.name) : fitting(holder, entry.name);
        if (asksForAge(rules)) {
            found.changed = std::max(found.changed, lastChangeBeside(folder, entry.name));
        }
        const auto judgement = judge(rules, found, what.now);
        if (judgement.answer != PlaceAnswer::spared && !what.stop.stop_requested()) {
            what.call({folder, path, entry.name, entry.kind, holder, found, judgement});
        }
        return true;
    };
    (void)files::forEachMeasurable(folder, files::HiddenEntries::include, what.stop, sizes, call, &what.open);
    for (const auto& name : lookedInto) {
        if (const auto child = folder.openChild(name.c_str())) {
            walk(what, *child, path / name, name);
        }
    }
}

}  // namespace brimvault::scanners
