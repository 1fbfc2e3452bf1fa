#include "engine/removal/MeasuringOperations.h"

#include <algorithm>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

namespace {

namespace fs = std::filesystem;
using Agreed = std::shared_ptr<const AgreedItems>;

bool isToBeCleaned(const CleanableItem& item, const Agreed& agreed) {
    return item.getSpace2SaveBySel() != 0 && (!agreed || agreed->holds(item));
}

std::string firstPathOf(const FFItem& item) {
    const auto paths = item.removalPaths();
    return paths.empty() ? std::string() : paths.front().native();
}

void addFiles(const ItemArray& items, const Agreed& agreed, std::vector<SelectedShare>& shares) {
    for (const auto& item : items) {
        const auto device = deviceOf(*item);
        if (!device || !isToBeCleaned(*item, agreed)) {
            continue;
        }
        const auto bytes = expectedToFree(*item);
        const auto folder = item->hasTargets() ? fs::path(item->details().targets.front().folder->path)
                                               : item->location().parent_path();
        shares.push_back({folder, firstPathOf(*item), *device, bytes, item->hasTargets()});
    }
}

// All localizations of an application lie on the volume of the first whose folder is known.
void addApplications(const ApplicationArray& applications, const Agreed& agreed, std::vector<SelectedShare>& shares) {
    for (const auto& application : applications) {
        if (!isToBeCleaned(*application, agreed)) {
            continue;
        }
        for (const auto& localization : application->pLocalizations()) {
            if (const auto device = deviceOf(localization->foundIn)) {
                shares.push_back({localization->plocPath.parent_path(), {}, *device, expectedToFree(*application)});
                break;
            }
        }
    }
}

std::vector<SelectedSet> setsOf(const CleanedItems& items) {
    std::vector<SelectedSet> sets;
    if (items.shared == nullptr) {
        return sets;
    }
    for (const auto& group : items.shared->groups) {
        const auto device = deviceOf(*group.members.front().item);
        const bool goes = std::all_of(group.members.begin(), group.members.end(), [&](const auto& member) {
            return items.files[member.section] && isToBeCleaned(*member.item, items.agreed[member.section]);
        });
        if (!device || !goes) {
            continue;
        }
        SelectedSet set{{}, *device, group.bytes};
        for (const auto& member : group.members) {
            set.paths.push_back(firstPathOf(*member.item));
        }
        sets.push_back(std::move(set));
    }
    return sets;
}

}  // namespace

void MeasureBeforeClean::main() {
    std::vector<SelectedShare> shares;
    if (items_.applications) {
        addApplications(*items_.applications, items_.agreed[Section::languageResources], shares);
    }
    for (const Section section : allSections) {
        if (items_.files[section]) {
            addFiles(*items_.files[section], items_.agreed[section], shares);
        }
    }
    const auto sets = setsOf(items_);
    items_ = {};
    meter_->begin(std::move(shares), sets, stopToken());
}

void MeasureAfterClean::main() {
    if (const auto space = meter_->end(stopToken())) {
        NotificationCenter::defaultCenter().post(notification::spaceFreed, {{key::freedSpace, *space}});
    }
}

}  // namespace brimvault::engine
