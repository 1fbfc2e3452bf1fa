#include "engine/removal/MeasuringOperations.h"

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

namespace {

using Agreed = std::shared_ptr<const AgreedItems>;

bool isToBeCleaned(const CleanableItem& item, const Agreed& agreed) {
    return item.getSpace2SaveBySel() != 0 && (!agreed || agreed->holds(item));
}

void addFiles(const ItemArray& items, const Agreed& agreed, std::vector<SelectedShare>& shares) {
    for (const auto& item : items) {
        const auto device = deviceOf(*item);
        if (!device || !isToBeCleaned(*item, agreed)) {
            continue;
        }
        const auto bytes = expectedToFree(*item);
        if (item->hasTargets()) {
            shares.push_back({item->details().targets.front().folder->path, {}, *device, bytes});
        } else {
            const auto location = item->location();
            shares.push_back({location.parent_path(), location.native(), *device, bytes});
        }
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
    const quint64 shared = std::exchange(items_, {}).shared;
    meter_->begin(std::move(shares), shared, stopToken());
}

void MeasureAfterClean::main() {
    if (const auto space = meter_->end(stopToken())) {
        NotificationCenter::defaultCenter().post(notification::spaceFreed, {{key::freedSpace, *space}});
    }
}

}  // namespace brimvault::engine
