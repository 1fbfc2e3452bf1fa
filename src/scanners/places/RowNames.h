#pragma once

#include <string>

#include "platform/DesktopEntries.h"
#include "scanners/places/FoundPlaces.h"

namespace brimvault::scanners {

/// What a row of places is called.
struct RowName {
    std::string title;         ///< under which it is listed
    std::string program;       ///< as a sentence names the program; empty for a row of none
    std::string desktopEntry;  ///< the identifier of the entry whose icon it has; empty for none
};

/// By the rule's title, else as the desktop calls the application, else by the application's identifier or the folder's
/// name.
[[nodiscard]] RowName nameOf(const PlaceRow& row, platform::DesktopEntries& entries);

}  // namespace brimvault::scanners
