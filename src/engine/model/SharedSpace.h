#pragma once

#include <QtGlobal>
#include <memory>
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
    std::vector<Member> members;
    quint64 bytes = 0;  ///< on disk
};

/// The answer to one search.
struct SharedGroups {
    quint64 search = 0;  ///< its number, unique in the process
    std::vector<SharedGroup> groups;
};

/// Files whose names lie in several items, of one section or of several. They are searched for after a scan, on a pool
/// thread, since there may be a million of them; the main thread sees only sums. What was found lasts until one of its
/// sections is scanned again. If that is not scanned together with the others, totals then say rather too little: what
/// the others know of single files is not kept. Main thread.
class SharedSpace {
public:
    SharedSpace() = default;
    SharedSpace(const SharedSpace&) = delete;
    SharedSpace& operator=(const SharedSpace&) = delete;

    /// Takes from the items what they know of files with further names, and begins a search if there is any. Its answer
    /// comes with `notification::sharedSpaceFound`, posted by the pool thread.
    void search(const PerSection<SectionItems>& sections);
    /// True if it is the answer to the last search, and the items are still those of that time.
    bool take(const std::shared_ptr<const SharedGroups>& answer);
    /// The items of the section are replaced by others.
    void forget(Section section);
    /// Items have gone for good: what they held together with others is now held by the others alone.
    void itemsGone() { counted_ = {}; }

    /// Bytes of the groups whose items are all ticked and in sections that are wanted.
    [[nodiscard]] quint64 freed(const PerSection<bool>& wanted) const;

private:
    struct Counted {
        bool isKnown = false;
        quint64 marksRevision = 0;
        PerSection<bool> wanted = {};
        quint64 bytes = 0;
    };

    quint64 lastSearch_ = 0;  ///< 0 when none is under way
    std::shared_ptr<const SharedGroups> found_;
    PerSection<bool> forgotten_ = {};
    mutable Counted counted_;  ///< cache
};

}  // namespace brimvault::engine
