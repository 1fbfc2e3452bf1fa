#include "app/scan/Findings.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "engine/model/AppItemData.h"
#include "engine/model/FFItem.h"

namespace brimvault::app {

namespace {

Finding common(const engine::CleanableItem& item, const SectionName& name) {
    Finding found;
    found.rule = name.id().latin1();
    found.bytes = item.ppnSize();
    found.frees = item.frees();
    found.isTicked = item.ppbChecked() && item.ppbDeletable();
    return found;
}

Finding findingOf(const engine::FFItem& item, const SectionName& name) {
    auto found = common(item, name);
    const auto& details = item.details();
    if (*details.rule != '\0') {
        found.rule = details.rule;
    }
    found.path = item.location().native();
    for (const auto& target : details.targets) {
        for (const auto& entry : target.names) {
            found.targets.push_back(target.folder->path + entry);
        }
    }
    found.needsAdministrator = details.needsAdministrator;
    found.note = item.note();
    found.noteArgument = details.noteArgument;
    return found;
}

Finding findingOf(const engine::AppItemData& application, const SectionName& name, const QStringList& keptLanguages) {
    auto found = common(application, name);
    found.path = application.pAppName().native();
    for (const auto& localization : application.itemsToClean(keptLanguages)) {
        found.targets.push_back(localization->plocPath.native());
    }
    return found;
}

bool isBefore(const Finding& one, const Finding& other) {
    return std::tie(other.bytes, one.path, one.rule) < std::tie(one.bytes, other.path, other.rule);
}

}  // namespace

quint64 SectionFindings::bytes() const {
    return std::accumulate(items.begin(), items.end(), quint64{0},
                           [](quint64 sum, const Finding& item) { return sum + item.bytes; });
}

SectionFindings findingsOf(const engine::DataMan& model, const SectionName& name, quint64 minBytes,
                           const QStringList& keptLanguages) {
    SectionFindings found{name, {}};
    const auto take = [&](const auto& items, const auto&... more) {
        for (const auto& item : items) {
            if (item->ppnSize() >= minBytes) {
                found.items.push_back(findingOf(*item, name, more...));
            }
        }
    };
    if (name.section == engine::Section::languageResources) {
        take(model.getAppsArray(), keptLanguages);
    } else {
        take(model.itemsOf(name.section));
    }
    for (auto& item : found.items) {
        std::sort(item.targets.begin(), item.targets.end());
    }
    std::sort(found.items.begin(), found.items.end(), isBefore);
    return found;
}

}  // namespace brimvault::app
