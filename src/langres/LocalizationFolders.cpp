#include "langres/LocalizationFolders.h"

#include <QByteArray>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"

namespace brimvault::langres {

bool isLocalizationName(const std::filesystem::path& name) {
    const auto extension = QByteArray::fromStdString(name.extension().native()).toLower();
    const auto stem = QByteArray::fromStdString(name.stem().native()).toLower();
    return extension.endsWith("lproj") && stem != "base";
}

bool isFolder(const std::filesystem::path& path) {
    const auto status = files::statusOf(path);
    return status && status->kind == files::NodeKind::directory;
}

bool isAnotherLocalizationBeside(const std::filesystem::path& localization) {
    bool found = false;
    (void)files::forEachChild(localization.parent_path(), files::HiddenEntries::skip,
                              [&](const files::DirectoryEntry& entry) {
                                  found = entry.kind == files::NodeKind::directory && isLocalizationName(entry.name) &&
                                          localization.filename() != entry.name;
                                  return !found;
                              });
    return found;
}

}  // namespace brimvault::langres
