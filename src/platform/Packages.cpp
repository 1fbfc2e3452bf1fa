#include "platform/Packages.h"

#include <QByteArray>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "files/ExtendedAttributes.h"
#include "platform/formats/PropertyList.h"

namespace brimvault::platform {

namespace {

// The extensions of the types that macOS declares as packages ("com.apple.package" and what conforms to it, in the type
// declarations of its core types and of the applications that come with it), in order. A framework is a bundle and no
// package there: its folder is shown open, as is one with localizations (lproj).
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

// The file browser's own attribute: 32 bytes, of which two from the ninth on are its marks, the higher first
// (Finder.h: the fields "finderFlags" and "kHasBundle").
bool hasBundleMark(const std::filesystem::path& folder) {
    constexpr std::size_t wholeLength = 32;
    constexpr std::size_t higherByteOfMarks = 8;
    constexpr unsigned hasBundle = 0x20;  // in that byte
    const auto information = files::extendedAttribute(folder, "com.apple.FinderInfo");
    return information.size() == wholeLength &&
           (static_cast<unsigned char>(information[higherByteOfMarks]) & hasBundle) != 0;
}

}  // namespace

bool Packages::isPackageExtension(const std::string& extension) {
    const auto lower = QByteArray::fromStdString(extension).toLower().toStdString();
    return std::find(std::begin(extensions), std::end(extensions), lower) != std::end(extensions);
}

bool Packages::isPackage(const std::filesystem::path& folder) {
    const auto extension = folder.extension().native();
    return (!extension.empty() && isPackageExtension(extension.substr(1))) || hasBundleMark(folder);
}

std::optional<std::string> Packages::bundleIdentifier(const std::filesystem::path& bundle) {
    const auto opened = files::DirectoryHandle::open(bundle);
    if (!opened) {
        return std::nullopt;
    }
    // In the order in which the platform looks for it: modern bundles, flat ones, those with a folder of resources.
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
