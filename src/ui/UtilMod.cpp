#include "ui/UtilMod.h"

#include "platform/LibraryURLs.h"

namespace brimvault::ui {

std::filesystem::path UtilMod::getFullPathToItem(const engine::FFItem& item, const std::filesystem::path& folder) {
    return item.pfpath().empty() ? folder / item.pfname() : item.pfpath();
}

std::filesystem::path UtilMod::getFullCachePathToItem(const engine::FFItem& item) {
    return getFullPathToItem(item, platform::LibraryURLs::getCachesFolderURL().value_or(std::filesystem::path()));
}

}  // namespace brimvault::ui
