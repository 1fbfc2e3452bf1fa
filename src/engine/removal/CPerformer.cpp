#include "engine/removal/CPerformer.h"

#include <array>

namespace brimvault::engine {

CPerformer::CPerformer(ScanTable scans, CleanTable cleans)
    : pscaner_(std::move(scans)), pcutter_(std::move(cleans)), pclprops_(pcutter_.pclprops()) {}

void CPerformer::Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
    if (bApps) {
        dropResults(Section::languageResources);
    }
    if (bCache) {
        dropResults(Section::caches);
    }
    if (bDwn) {
        dropResults(Section::downloads);
    }
    if (bTrash) {
        dropResults(Section::trash);
    }
    if (bLogs) {
        dropResults(Section::logs);
    }
    pcutter_.cancelMeasuring();
    pscaner_.Scan(bApps, bDwn, bCache, bTrash, bLogs);
}

void CPerformer::dropResults(Section section) {
    pscaner_.cancelOperationByClass(section);
    if (pscaner_.isHanging(section)) {
        pdata_.endScan(section);
    } else {
        pdata_.resetArray(section);
    }
}

void CPerformer::giveUpScans() {
    giveUpScansOf([](Section) { return true; });
}

// A scan that was given up posts no end, so its progress would stay on show.
void CPerformer::giveUpScansOf(const std::function<bool(Section)>& chosen) {
    for (const Section section : pscaner_.giveUpCancelled(chosen)) {
        pdata_.endScan(section);
    }
}

CleanSelection CPerformer::selection(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) const {
    const std::array<bool, allSections.size()> chosen = {bApps, bDwn, bCache, bTrash, bLogs};
    CleanSelection selection;
    for (const Section section : allSections) {
        if (!chosen[static_cast<std::size_t>(section)]) {
            continue;
        }
        selection[section] = section == Section::languageResources
                                 ? std::make_shared<const AgreedItems>(pdata_.getAppsArray())
                                 : std::make_shared<const AgreedItems>(pdata_.itemsOf(section));
    }
    return selection;
}

// The result of a cancelled scan that has not returned would bring back what the clean removes.
void CPerformer::Clean(const CleanSelection& selection) {
    for (const Section section : allSections) {
        if (selection[section]) {
            pcutter_.cancelOperationByClass(section);
        }
    }
    giveUpScansOf([&](Section section) { return selection[section] != nullptr; });
    const auto itemsOf = [&](Section section) {
        return selection[section] ? std::optional(pdata_.itemsOf(section)) : std::nullopt;
    };
    pcutter_.Clean(selection[Section::languageResources] ? std::optional(pdata_.getAppsArray()) : std::nullopt,
                   itemsOf(Section::downloads), itemsOf(Section::caches), itemsOf(Section::trash),
                   itemsOf(Section::logs), selection, pdata_.sharedGroups());
}

}  // namespace brimvault::engine
