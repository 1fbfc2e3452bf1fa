#pragma once

#include <QtGlobal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/ItemArrays.h"
#include "engine/Section.h"
#include "engine/model/SectionItems.h"

namespace brimvault::engine {

/// Items that together hold all names of some files. Removing a part of them frees nothing of these.
struct SharedGroup {
    struct Member {
        std::shared_ptr<const FFItem> item;
        Section section;
    };
    std::vector<Member> members;  ///< two or more
    quint64 bytes = 0;            ///< on disk
};

/// The answer to one search.
struct SharedGroups {
    quint64 search = 0;  ///< its number, unique in the process
    std::vector<SharedGroup> groups;
    /// Items that alone hold all names that are left, since the others have been removed; and the bytes on disk.
    std::vector<std::pair<std::shared_ptr<FFItem>, quint64>> alone;
};

/// Items of a section that one scan has found, or that were removed at one time.
struct KnownItems {
    ItemArray items;
    Section section;
    std::vector<std::string> holders;  ///< as SectionItems has them
    quint64 time;                      ///< of the scan or the removal
    bool isRemoved;
};

/// Those of the items that are removed come last. Any thread.
[[nodiscard]] std::shared_ptr<const SharedGroups> sharedGroups(quint64 search, const std::vector<KnownItems>& known);

/// Files whose names lie in several items, of one section or of several. The sums are made anew, on a pool thread,
/// whenever the items are others: there may be a million such files. Main thread.
class SharedSpace {
public:
    SharedSpace() = default;
    SharedSpace(const SharedSpace&) = delete;
    SharedSpace& operator=(const SharedSpace&) = delete;

    /// Begins a search among the items that the sections have now. Its answer comes with
    /// `notification::sharedSpaceFound`, posted by the pool thread. Till then nothing is known of groups.
    void search(const PerSection<SectionItems>& sections);
    /// Whether it is the answer to the last search, and something has changed by it: items may free more or less.
    bool take(const std::shared_ptr<const SharedGroups>& answer);

    /// The section is scanned anew: what comes from now on was found after all removals before.
    void scanned(Section section);
    /// These items of the section, which still has them, are removed for good: their names exist no more, though what
    /// was found before counts them.
    void removed(Section section, const ItemArray& gone, const SectionItems& before);

    /// Of the items as they are; null until the last search has its answer.
    [[nodiscard]] std::shared_ptr<const SharedGroups> groups() const { return isCurrent_ ? found_ : nullptr; }
    /// Bytes of the groups whose items are all ticked and in sections that are wanted.
    [[nodiscard]] quint64 freed(const PerSection<bool>& wanted) const;

private:
    struct Counted {
        bool isKnown = false;
        quint64 marksRevision = 0;
        PerSection<bool> wanted = {};
        quint64 bytes = 0;
    };

    quint64 time_ = 0;  ///< counts scans and removals
    PerSection<quint64> scanned_ = {};
    std::vector<KnownItems> removed_;  ///< with names that a section may still count
    quint64 lastSearch_ = 0;
    std::shared_ptr<const SharedGroups> found_;  ///< the last answer
    bool isCurrent_ = false;                     ///< of the items as they are
    mutable Counted counted_;                    ///< cache
};

}  // namespace brimvault::engine
