#include "langres/LocalizationFolders.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace brimvault::langres {

namespace {

std::string lowerCased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

}  // namespace

bool isLocalizationName(const std::filesystem::path& name) {
    return lowerCased(name.extension().native()).ends_with("lproj") && lowerCased(name.stem().native()) != "base";
}

}  // namespace brimvault::langres
