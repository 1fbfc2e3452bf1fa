#include "engine/model/SharedSpace.h"

#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <map>
#include <unordered_set>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

namespace {

/// An item that holds some names of files, or held them.
struct Holding {
    std::shared_ptr<FFItem> item;
    Section section;
    quint64 time;
    bool isRemoved;
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

std::vector<Holding> holdingsOf(const std::vector<KnownItems>& known) {
    std::vector<Holding> holdings;
    std::unordered_set<const FFItem*> met;
    for (const auto& list : known) {
        for (const auto& item : list.items) {
            if (item->sharedFiles() != nullptr && met.insert(item.get()).second && !liesInAny(*item, list.holders)) {
                holdings.push_back({item, list.section, list.time, list.isRemoved});
            }
        }
    }
    return holdings;
}

std::vector<HeldFile> filesOf(const std::vector<Holding>& holdings) {
    std::vector<HeldFile> all;
    for (std::size_t number = 0; number < holdings.size(); ++number) {
        for (const auto& node : *holdings[number].item->sharedFiles()) {
            all.push_back({node, static_cast<std::uint32_t>(number)});
        }
    }
    std::sort(all.begin(), all.end(), [](const auto& one, const auto& other) {
        return one.node.isSameAs(other.node) ? one.holding < other.holding : one.node.isBefore(other.node);
    });
    return all;
}

/// All that is known of one file.
class Names {
public:
    explicit Names(const std::vector<Holding>& holdings) : holdings_(holdings) {}

    // What was found last knows best how many names there are. To be called for all that hold it before the others.
    void add(const HeldFile& file) {
        const auto& holding = holdings_[file.holding];
        if (holding.isRemoved) {
            seen_ += holding.time > time_ ? file.node.names : 0;
            return;
        }
        seen_ += file.node.names;
        holders_.push_back(file.holding);
        if (holders_.size() == 1 || holding.time > time_) {
            time_ = holding.time;
            all_ = file.node.allNames;
            allocated_ = file.node.allocated;
        }
    }
    [[nodiscard]] bool areAllKnown() const { return !holders_.empty() && seen_ >= all_; }
    [[nodiscard]] const std::vector<std::uint32_t>& holders() const { return holders_; }
    [[nodiscard]] quint64 allocated() const { return allocated_; }

private:
    const std::vector<Holding>& holdings_;
    std::vector<std::uint32_t> holders_;
    quint64 time_ = 0;
    quint64 seen_ = 0;
    quint64 all_ = 0;
    quint64 allocated_ = 0;
};

// By the numbers of the holdings that have all names of the files.
std::map<std::vector<std::uint32_t>, quint64> sumsByHolders(const std::vector<Holding>& holdings) {
    std::map<std::vector<std::uint32_t>, quint64> sums;
    const auto all = filesOf(holdings);
    for (auto next = all.begin(); next != all.end();) {
        Names names(holdings);
        for (const auto& first = *next; next != all.end() && next->node.isSameAs(first.node); ++next) {
            names.add(*next);
        }
        if (names.areAllKnown()) {
            sums[names.holders()] += names.allocated();
        }
    }
    return sums;
}

}  // namespace

std::shared_ptr<const SharedGroups> sharedGroups(quint64 search, const std::vector<KnownItems>& known) {
    auto answer = std::make_shared<SharedGroups>();
    answer->search = search;
    const auto holdings = holdingsOf(known);
    for (const auto& [holders, bytes] : sumsByHolders(holdings)) {
        if (holders.size() == 1) {
            answer->alone.emplace_back(holdings[holders.front()].item, bytes);
            continue;
        }
        SharedGroup group{.members = {}, .bytes = bytes};
        for (const auto number : holders) {
            group.members.push_back({holdings[number].item, holdings[number].section});
        }
        answer->groups.push_back(std::move(group));
    }
    return answer;
}

void SharedSpace::search(const PerSection<SectionItems>& sections) {
    static std::atomic<quint64> searches = 0;
    std::vector<KnownItems> known;
    quint64 oldest = time_;
    for (const Section section : allSections) {
        if (const auto& items = sections[section].items(); !items.isEmpty()) {
            known.push_back({items, section, sections[section].holders(), scanned_[section], false});
            oldest = std::min(oldest, scanned_[section]);
        }
    }
    std::erase_if(removed_, [oldest](const auto& removed) { return removed.time <= oldest; });
    known.insert(known.end(), removed_.begin(), removed_.end());
    lastSearch_ = ++searches;
    isCurrent_ = false;
    QThreadPool::globalInstance()->start([search = lastSearch_, known = std::move(known)] {
        NotificationCenter::defaultCenter().post(notification::sharedSpaceFound,
                                                 {{key::sharedGroups, sharedGroups(search, known)}});
    });
}

bool SharedSpace::take(const std::shared_ptr<const SharedGroups>& answer) {
    if (answer == nullptr || answer->search != lastSearch_) {
        return false;
    }
    const auto before = std::exchange(found_, answer);
    isCurrent_ = true;
    counted_ = {};
    const auto isNothing = [](const auto& found) {
        return found == nullptr || (found->groups.empty() && found->alone.empty());
    };
    if (before != nullptr) {
        for (const auto& [item, bytes] : before->alone) {
            item->setFreesAlone(0);
        }
        // The old ones may be many, and are destroyed on a pool thread.
        QThreadPool::globalInstance()->start([before] {});
    }
    for (const auto& [item, bytes] : answer->alone) {
        item->setFreesAlone(bytes);
    }
    return !isNothing(before) || !isNothing(answer);
}

void SharedSpace::scanned(Section section) {
    scanned_[section] = ++time_;
    isCurrent_ = false;
}

void SharedSpace::removed(Section section, const ItemArray& gone, const SectionItems& before) {
    ItemArray holding;
    std::copy_if(gone.begin(), gone.end(), std::back_inserter(holding),
                 [](const auto& item) { return item->sharedFiles() != nullptr; });
    if (!holding.isEmpty()) {
        removed_.push_back({holding, section, before.holders(), ++time_, true});
    }
}

quint64 SharedSpace::freed(const PerSection<bool>& wanted) const {
    const Counted now{true, CleanableItem::marksRevision(), wanted, 0};
    const bool isCounted = counted_.isKnown && counted_.marksRevision == now.marksRevision && counted_.wanted == wanted;
    if (!isCurrent_ || isCounted) {
        return isCurrent_ ? counted_.bytes : 0;
    }
    counted_ = now;
    const auto goes = [&](const SharedGroup::Member& member) {
        const auto& [item, section] = member;
        return wanted[section] && item->ppbChecked() && item->ppbDeletable();
    };
    for (const auto& group : found_->groups) {
        counted_.bytes += std::all_of(group.members.begin(), group.members.end(), goes) ? group.bytes : 0;
    }
    return counted_.bytes;
}

}  // namespace brimvault::engine
