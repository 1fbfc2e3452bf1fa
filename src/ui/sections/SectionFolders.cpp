#include "ui/sections/SectionFolders.h"

#include <optional>

#include "platform/LibraryURLs.h"
#include "scanners/SLogsOperation.h"

namespace brimvault::ui {

using engine::Section;
using platform::LibraryURLs;

namespace {

using Folder = std::optional<std::filesystem::path>;

std::vector<Folder> logs() {
    const scanners::PathsGenerator paths;
    const scanners::SLogsOperation scan(scanners::ContainersFolderScannerManager::shared(), paths);
    std::vector<Folder> folders;
    for (scanners::SLogsOperation::LogSource source = 0; const auto folder = scan.urlOfSource(source); ++source) {
        folders.push_back(folder);
    }
    return folders;
}

// The desktop's trash has a sub-folder for the files, beside one for its records of them.
std::vector<Folder> trash() {
    const auto desktop = LibraryURLs::getDesktopTrashFolderURL();
    return {LibraryURLs::getTrashFolderURL(), desktop ? Folder(*desktop / "files") : Folder(), desktop};
}

std::vector<Folder> foldersOf(Section section) {
    switch (section) {
        case Section::languageResources:
            return {LibraryURLs::getApplicationFolderURL(), LibraryURLs::getUserApplicationFolderURL()};
        case Section::downloads:
            return {LibraryURLs::getDownloadsFolderURL()};
        case Section::caches:
            return {LibraryURLs::getCachesFolderURL()};
        case Section::trash:
            return trash();
        case Section::logs:
            break;
    }
    return logs();
}

}  // namespace

std::vector<std::filesystem::path> SectionFolders::of(Section section) {
    std::vector<std::filesystem::path> named;
    for (const Folder& folder : foldersOf(section)) {
        if (folder) {
            named.push_back(*folder);
        }
    }
    return named;
}

}  // namespace brimvault::ui
