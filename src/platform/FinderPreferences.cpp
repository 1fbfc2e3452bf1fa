#include "platform/FinderPreferences.h"

#include <system_error>

#include "platform/System.h"
#include "platform/formats/PropertyList.h"

namespace brimvault::platform {

FinderPreferences& FinderPreferences::shared() {
    static FinderPreferences instance;
    return instance;
}

std::optional<std::filesystem::path> FinderPreferences::GetFinderPrefPath() {
    const std::lock_guard guard(mutex_);
    if (mpFinderPrefPath_.empty()) {
        const auto file = homeFolder() / "Library" / "Preferences" / "com.apple.finder.plist";
        std::error_code unknown;
        if (std::filesystem::exists(file, unknown)) {
            mpFinderPrefPath_ = file;
        }
    }
    return mpFinderPrefPath_.empty() ? std::nullopt : std::optional(mpFinderPrefPath_);
}

bool FinderPreferences::isHiddenFilesVisibleInFinder() {
    const auto file = GetFinderPrefPath();
    const auto preferences = file ? PropertyList::read(*file) : std::nullopt;
    return preferences && preferences->boolean("AppleShowAllFiles").value_or(false);
}

}  // namespace brimvault::platform
