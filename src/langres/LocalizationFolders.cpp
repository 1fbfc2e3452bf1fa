#include "langres/LocalizationFolders.h"

#include <QByteArray>

namespace brimvault::langres {

bool isLocalizationName(const std::filesystem::path& name) {
    const auto extension = QByteArray::fromStdString(name.extension().native()).toLower();
    const auto stem = QByteArray::fromStdString(name.stem().native()).toLower();
    return extension.endsWith("lproj") && stem != "base";
}

}  // namespace brimvault::langres
