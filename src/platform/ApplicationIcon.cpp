#include "platform/ApplicationIcon.h"

#include "files/DirectoryHandle.h"
#include "platform/formats/FileContents.h"
#include "platform/formats/PropertyList.h"

namespace brimvault::platform {

namespace {

using files::DirectoryHandle;

// Where a kind of bundle keeps its property list and its pictures, and the key of the icon.
struct Layout {
    const char* folder;
    const char* list;       ///< in the folder
    const char* resources;  ///< in the folder
    const char* key;
};

constexpr Layout layouts[] = {
    {"Contents", "Info.plist", "Resources", "CFBundleIconFile"},
    {"Resources", "Info-gnustep.plist", ".", "NSIcon"},
    {"Resources", "Info-gnustep.plist", ".", "ApplicationIcon"},
    {".", "Info-gnustep.plist", ".", "NSIcon"},  // a bundle that is only the resources
    {".", "Info-gnustep.plist", ".", "ApplicationIcon"},
};

// Property lists may leave the extension away.
constexpr const char* extensions[] = {"", ".icns", ".tiff", ".png"};

// The property list is untrusted: what it names must not lead out of the folder.
bool isNameOfOneFile(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

std::optional<std::string> pictureNamed(const DirectoryHandle& resources, const std::string& name) {
    for (const char* extension : extensions) {
        auto contents = FileContents::read(resources, (name + extension).c_str(), ApplicationIcon::maxBytes);
        if (contents) {
            return contents;
        }
    }
    return std::nullopt;
}

std::optional<std::string> picture(const DirectoryHandle& application, const Layout& layout) {
    const auto folder = application.openChild(layout.folder);
    const auto list = folder ? PropertyList::read(*folder, layout.list) : std::nullopt;
    const auto name = list ? list->text(layout.key) : std::nullopt;
    if (!name || !isNameOfOneFile(*name)) {
        return std::nullopt;
    }
    const auto resources = folder->openChild(layout.resources);
    return resources ? pictureNamed(*resources, *name) : std::nullopt;
}

}  // namespace

std::optional<std::string> ApplicationIcon::read(const std::filesystem::path& application) {
    const auto opened = DirectoryHandle::open(application);
    for (const auto& layout : layouts) {
        auto found = opened ? picture(*opened, layout) : std::nullopt;
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

}  // namespace brimvault::platform
