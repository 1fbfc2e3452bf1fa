#pragma once

#include <QLatin1String>

#include "engine/Section.h"

/// The names of all notifications and the keys of their user info, spelled as posters and observers share them.
namespace brimvault::engine {

namespace notification {

inline constexpr QLatin1String scanFinished("scanFinished");
inline constexpr QLatin1String cleanFinished("cleanFinished");
/// What a clean has freed; posted after "cleanFinished", or never, on a thread of the engine's.
inline constexpr QLatin1String spaceFreed("spaceFreed");
inline constexpr QLatin1String singleFileRemoveFinished("singleFileRemoveFinished");
/// The folders in which a scan looked for files; posted by the scan's thread before the finished notification.
inline constexpr QLatin1String placesFound("placesFound");
/// The files whose names lie in several items; posted by a pool thread some time after items have come or gone.
inline constexpr QLatin1String sharedSpaceFound("sharedSpaceFound");
/// The model has taken them in; posted on the main thread.
inline constexpr QLatin1String sharedSpaceInterfaceUpd("sharedSpaceInterfaceUpd");
/// Reserved; observed, and posted by nobody.
inline constexpr QLatin1String updateCleanableSizes("updateCleanableSizes");
/// A click on the status panel; posted on the main thread.
inline constexpr QLatin1String plashkaPressed("PlashkaPressed");

}  // namespace notification

namespace key {

/// Number: how many items a scan expects to find (Language Resources: applications found).
inline constexpr QLatin1String totalCount("pstrKeyTotalCount");
/// Number: whole per cents of a scan, 0 to 100; more if it finds more than it expected.
inline constexpr QLatin1String progressPercent("pstrKeyProgressPercent");
/// Dictionary: application path to the localizations removed from it.
inline constexpr QLatin1String cleanedApplications("pstrKeyCleanedApplicationsDictionary");
/// Places: the root folders of a section. Number: that section.
inline constexpr QLatin1String places("places");
inline constexpr QLatin1String section("section");
/// Shared groups.
inline constexpr QLatin1String sharedGroups("sharedGroups");
/// FreedSpace.
inline constexpr QLatin1String freedSpace("freedSpace");
/// Number: 1 if what is gone from its section lies in the Trash now.
inline constexpr QLatin1String movedToTrash("movedToTrash");
/// Number, 0 or 1: how a single removal ended.
inline constexpr QLatin1String success("success");

}  // namespace key

/// What one section's operations post, and under which keys.
struct SectionVocabulary {
    QLatin1String scanFinished;       ///< array: the whole result
    QLatin1String scanProgress;       ///< delta, or array for the first batch; total count; percent
    QLatin1String cleanFinished;      ///< array: the items that are gone; not-cleaned dictionary
    QLatin1String interfaceFinished;  ///< posted by the model on the main thread after merging a result
    QLatin1String interfaceProgress;  ///< the same after merging progress
    QLatin1String arrayKey;           ///< array: replaces in a scan, names what is gone in a clean
    QLatin1String deltaKey;           ///< array: appended
    QLatin1String notCleanedKey;      ///< dictionary: item name to reason (Language Resources: to a count)
};

/// Any thread.
constexpr SectionVocabulary vocabulary(Section section) {
    using Name = QLatin1String;
    switch (section) {
        case Section::languageResources:
            return {Name("appResScanFinished"),
                    Name("appResScanningProgr"),
                    Name("appResCleanFinished"),
                    Name("appResScanFinishedInterfaceUpd"),
                    Name("NSString* appResScanningProgrInterfaceUpd"),  // with this beginning: part of the name
                    Name("pstrKeyAllApplicationsArray"),
                    Name("pstrKeyDeltaApplications"),
                    Name("pstrKeyNotCleanedApplicationsDictionary")};
        case Section::downloads:
            return {Name("downloadsScanFinished"),
                    Name("downloadsScanningProgr"),
                    Name("downloadsCleanFinished"),
                    Name("downloadsFinishedInterfaceUpd"),
                    Name("downloadsScanningProgrInterfaceUpd"),
                    Name("pstrKeyDownloadsArray"),
                    Name("pstrKeyDeltaDownloadsArray"),
                    Name("pstrKeyNotCleanedDownloadsDictionary")};
        case Section::caches:
            return {Name("cachesScanFinished"),
                    Name("cachesScanningProgr"),
                    Name("cachesCleanFinished"),
                    Name("cachesFinishedInterfaceUpd"),
                    Name("cachesScanningProgrInterfaceUpd"),
                    Name("pstrKeyCachesArray"),
                    Name("pstrKeyDeltaCachesArray"),
                    Name("pstrKeyNotCleanedCachesDictionary")};
        case Section::trash:
            return {Name("trashScanFinished"),
                    Name("trashScanningProgr"),
                    Name("trashCleanFinished"),
                    Name("trashFinishedInterfaceUpd"),
                    Name("trashScanningProgrInterfaceUpd"),
                    Name("pstrKeyTrashArray"),
                    Name("pstrKeyDeltaTrashArray"),
                    Name("pstrKeyNotCleanedTrashDictionary")};
        case Section::logs:
            break;
    }
    return {Name("logsScanFinished"),
            Name("logsScanningProgr"),
            Name("logsCleanFinished"),
            Name("logsFinishedInterfaceUpd"),
            Name("logsScanningProgrInterfaceUpd"),
            Name("pstrKeyLogsArray"),
            Name("pstrKeyDeltaLogsArray"),
            Name("pstrKeyNotCleanedLogsDictionary")};
}

}  // namespace brimvault::engine
