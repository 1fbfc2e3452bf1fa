#include "engine/CPerformer.h"

namespace brimvault::engine {

namespace {

std::optional<ItemArray> whenChosen(bool chosen, const ItemArray& items) {
    return chosen ? std::optional(items) : std::nullopt;
}

}  // namespace

CPerformer::CPerformer(ScanTable scans, CleanTable cleans)
    : pscaner_(std::move(scans)), pcutter_(std::move(cleans)), pclprops_(pcutter_.pclprops()) {}

void CPerformer::Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
    if (bApps) {
        pscaner_.cancelScanApplicationsResources();
        pdata_.resetAppsArray();
    }
    if (bCache) {
        pscaner_.cancelScanCaches();
        pdata_.resetCachesArray();
    }
    if (bDwn) {
        pscaner_.cancelScanDownloads();
        pdata_.resetDwnsArray();
    }
    if (bTrash) {
        pscaner_.cancelScanTrash();
        pdata_.resetTrashArray();
    }
    if (bLogs) {
        pscaner_.cancelScanLogs();
        pdata_.resetLogsArray();
    }
    pscaner_.Scan(bApps, bDwn, bCache, bTrash, bLogs);
}

void CPerformer::Clean(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
    if (bApps) {
        pcutter_.cancelCleanAppsRes();
    }
    if (bDwn) {
        pcutter_.cancelCleanDownloads();
    }
    if (bCache) {
        pcutter_.cancelCleanCaches();
    }
    if (bTrash) {
        pcutter_.cancelCleanTrash();
    }
    if (bLogs) {
        pcutter_.cancelCleanLogs();
    }
    pcutter_.Clean(bApps ? std::optional(pdata_.getAppsArray()) : std::nullopt,
                   whenChosen(bDwn, pdata_.getDownloadsArray()), whenChosen(bCache, pdata_.getCachesArray()),
                   whenChosen(bTrash, pdata_.getTrashArray()), whenChosen(bLogs, pdata_.getLogsArray()));
}

}  // namespace brimvault::engine
