#include "platform/Packages.h"

#include <QByteArray>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "files/ExtendedAttributes.h"
#include "platform/formats/PropertyList.h"

namespace brimvault::platform {

namespace {

// The extensions of the types that macOS declares as packages (those that conform to "com.apple.package", of the core
// types and of the bundled applications), sorted. There a framework is a bundle but no package, and neither is a folder
// of localizations (lproj): both are shown as folders.
constexpr std::string_view extensions[] = {
    "action",       "app",          "appex",         "aplibrary",
    "backupbundle", "band",         "bundle",        "caction",
    "colorpicker",  "component",    "definition",    "dext",
    "dictionary",   "docset",       "download",      "dsym",
    "fcpbundle",    "help",         "ibplugin",      "imovielibrary",
    "kext",         "key",          "logicx",        "mdimporter",
    "menu",         "mpkg",         "nib",           "numbers",
    "osax",         "pages",        "photoslibrary", "pkg",
    "playground",   "plugin",       "prefpane",      "qlgenerator",
    "rtfd",         "saver",        "scptd",         "service",
    "slidesaver",   "sparsebundle", "spreporter",    "systemextension",
    "theater",      "tvlibrary",    "vst",           "vst3",
    "wdgt",         "workflow",     "xcodeproj",     "xcworkspace",
    "xpc",
};

// The extended attribute of the Finder: 32 bytes, with 16 big-endian flag bits at offset 8 ("finderFlags" and
// "kHasBundle" in Finder.h).
bool hasBundleFlag(const std::filesystem::path& folder) {
    constexpr std::size_t attributeLength = 32;
    constexpr std::size_t flagsOffset = 8;
    constexpr unsigned hasBundle = 0x20;  // in the high byte
    const auto information = files::extendedAttribute(folder, "com.apple.FinderInfo");
    return information.size() == attributeLength &&
           (static_cast<unsigned char>(information[flagsOffset]) & hasBundle) != 0;
}

}  // namespace

bool Packages::isPackageExtension(const std::string& extension) {
    const auto lower = QByteArray::fromStdString(extension).toLower().toStdString();
    return std::find(std::begin(extensions), std::end(extensions), lower) != std::end(extensions);
}

bool Packages::isPackage(const std::filesystem::path& folder) {
    const auto extension = folder.extension().native();
    return (!extension.empty() && isPackageExtension(extension.substr(1))) || hasBundleFlag(folder);
}

std::optional<std::string> Packages::bundleIdentifier(const std::filesystem::path& bundle) {
    const auto opened = files::DirectoryHandle::open(bundle);
    if (!opened) {
        return std::nullopt;
    }
    // In macOS's order of lookup: modern bundles, flat ones, those with a folder of resources.
    for (const char* folder : {"Contents", ".", "Resources"}) {
        const auto holder = opened->openChild(folder);
        const auto list = holder ? PropertyList::read(*holder, "Info.plist") : std::nullopt;
        if (list) {
            return list->text("CFBundleIdentifier");
        }
    }
    return std::nullopt;
}

}  // namespace brimvault::platform
