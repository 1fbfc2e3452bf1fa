#pragma once

#include <string>

#include "platform/DesktopEntries.h"
#include "scanners/places/CacheNames.h"
#include "scanners/places/FoundPlaces.h"

namespace brimvault::scanners {

/// What a row is called.
struct RowName {
    std::string title;         ///< under which it is listed
    std::string program;       ///< as a sentence names the program; empty for a row of none
    std::string desktopEntry;  ///< the identifier of the entry whose icon it has; empty for none
};

/// By the rule's title, else as the desktop calls the application, else by the application's identifier or the folder's
/// name.
[[nodiscard]] RowName nameOf(const PlaceRow& row, platform::DesktopEntries& entries);

/// That of an entry of a caches folder. A browser's is called like the browser, and what lies in an entry that is
/// looked into has both names.
[[nodiscard]] RowName nameOf(const CacheNames::Entry& entry, const PlaceRule* rule, platform::DesktopEntries& entries);

}  // namespace brimvault::scanners
