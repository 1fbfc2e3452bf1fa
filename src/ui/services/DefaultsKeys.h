#pragma once

#include <QLatin1String>

/// Keys of the user's defaults; those of the section check boxes are in ui/sections/SectionRows.
namespace brimvault::ui::defaults_key {

inline constexpr QLatin1String lastCleanedSize(
    "LastCleanedSize");  ///< bytes freed in this run by its last clean that freed any
inline constexpr QLatin1String totalCleanedSize("TotalCleanedSize");  ///< bytes freed by all cleans ever
inline constexpr QLatin1String launchNumber("APP_launch_number");
inline constexpr QLatin1String cleanNumber("APP_clean_number");  ///< cleans that freed something
/// The removal confirmation is not shown again.
inline constexpr QLatin1String suppressRemovalAlert("SuppressAlertShowAlertOnRemove");
/// What is removed is written into the history; yes where it is missing.
inline constexpr QLatin1String keepHistory("KeepHistory");

}  // namespace brimvault::ui::defaults_key
