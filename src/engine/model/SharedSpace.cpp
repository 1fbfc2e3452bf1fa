#include "engine/model/SharedSpace.h"

#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

namespace {

/// What an item knows of files that have further names.
struct Holding {
    std::shared_ptr<const FFItem> item;
    Section section;
    FFItem::SharedFiles files;
};

struct Search {
    quint64 number = 0;
    std::vector<Holding> holdings;
    PerSection<std::vector<std::string>> holders;  ///< paths of items that hold others, sorted, with a slash at the end
    std::shared_ptr<const SharedGroups> before;    ///< what was known
    PerSection<bool> forgotten = {};               ///< sections of which that does not hold any more
};

struct HeldFile {
    files::NamedNode node;
    std::uint32_t holding;
};

bool liesInAny(const std::string& path, const std::vector<std::string>& holders) {
    for (auto slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        if (std::binary_search(holders.begin(), holders.end(), path.substr(0, slash + 1))) {
            return true;
        }
    }
    return false;
}

// An item inside another takes no part: its names are among those of its holder.
bool liesInAny(const FFItem& item, const std::vector<std::string>& holders) {
    const auto paths = holders.empty() ? std::vector<std::filesystem::path>() : item.removalPaths();
    return std::any_of(paths.begin(), paths.end(), [&](const auto& path) { return liesInAny(path.native(), holders); });
}

std::vector<HeldFile> heldFiles(Search& search) {
    std::vector<HeldFile> all;
    for (std::size_t number = 0; number < search.holdings.size(); ++number) {
        auto& [item, section, files] = search.holdings[number];
        if (!liesInAny(*item, search.holders[section])) {
            for (const auto& node : *files) {
                all.push_back({node, static_cast<std::uint32_t>(number)});
            }
        }
        files.reset();
    }
    std::sort(all.begin(), all.end(), [](const auto& one, const auto& other) {
        return one.node.isSameAs(other.node) ? one.holding < other.holding : one.node.isBefore(other.node);
    });
    return all;
}

// By the numbers of the holdings that have all names of the files.
std::map<std::vector<std::uint32_t>, quint64> sumsByHoldings(Search& search) {
    std::map<std::vector<std::uint32_t>, quint64> sums;
    const auto all = heldFiles(search);
    for (auto next = all.begin(); next != all.end();) {
        const auto& node = next->node;
        std::vector<std::uint32_t> together;
        quint64 names = 0;
        for (; next != all.end() && next->node.isSameAs(node); ++next) {
            together.push_back(next->holding);
            names += next->node.names;
        }
        if (names >= node.allNames) {
            sums[std::move(together)] += node.allocated;
        }
    }
    return sums;
}

bool isInAny(const SharedGroup& group, const PerSection<bool>& sections) {
    return std::any_of(group.members.begin(), group.members.end(),
                       [&](const auto& member) { return sections[member.section]; });
}

std::shared_ptr<const SharedGroups> groupsOf(Search& search) {
    auto answer = std::make_shared<SharedGroups>();
    answer->search = search.number;
    if (search.before != nullptr) {
        std::copy_if(search.before->groups.begin(), search.before->groups.end(), std::back_inserter(answer->groups),
                     [&](const auto& group) { return !isInAny(group, search.forgotten); });
    }
    for (const auto& [together, bytes] : sumsByHoldings(search)) {
        SharedGroup group{.members = {}, .bytes = bytes};
        for (const auto number : together) {
            group.members.push_back({search.holdings[number].item, search.holdings[number].section});
        }
        answer->groups.push_back(std::move(group));
    }
    return answer;
}

}  // namespace

void SharedSpace::search(const PerSection<SectionItems>& sections) {
    static std::atomic<quint64> searches = 0;
    const auto search = std::make_shared<Search>();
    for (const Section section : allSections) {
        for (const auto& item : sections[section].items()) {
            if (auto files = item->takeSharedFiles()) {
                search->holdings.push_back({item, section, std::move(files)});
            }
        }
        search->holders[section] = sections[section].holders();
    }
    if (search->holdings.empty()) {
        return;  // what is known stays as it is
    }
    lastSearch_ = search->number = ++searches;
    search->before = found_;
    search->forgotten = forgotten_;
    QThreadPool::globalInstance()->start([search] {
        NotificationCenter::defaultCenter().post(notification::sharedSpaceFound,
                                                 {{key::sharedGroups, groupsOf(*search)}});
    });
}

bool SharedSpace::take(const std::shared_ptr<const SharedGroups>& answer) {
    if (answer == nullptr || answer->search != lastSearch_) {
        return false;
    }
    lastSearch_ = 0;
    // The old ones are many, and destroyed on a pool thread.
    QThreadPool::globalInstance()->start([before = std::exchange(found_, answer)] {});
    forgotten_ = {};
    counted_ = {};
    return true;
}

void SharedSpace::forget(Section section) {
    lastSearch_ = 0;
    forgotten_[section] = true;
    counted_ = {};
}

quint64 SharedSpace::freed(const PerSection<bool>& wanted) const {
    const Counted now{true, CleanableItem::marksRevision(), wanted, 0};
    const bool isCounted = counted_.isKnown && counted_.marksRevision == now.marksRevision && counted_.wanted == wanted;
    if (found_ == nullptr || isCounted) {
        return counted_.bytes;
    }
    counted_ = now;
    const auto goes = [&](const SharedGroup::Member& member) {
        const auto& [item, section] = member;
        return item->isGone() || (wanted[section] && item->ppbChecked() && item->ppbDeletable());
    };
    for (const auto& group : found_->groups) {
        const bool isFreed =
            !isInAny(group, forgotten_) && std::all_of(group.members.begin(), group.members.end(), goes);
        counted_.bytes += isFreed ? group.bytes : 0;
    }
    return counted_.bytes;
}

}  // namespace brimvault::engine
