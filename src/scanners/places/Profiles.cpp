#include "scanners/places/Profiles.h"

#include <algorithm>
#include <array>

#include "files/trees/Inspect.h"
#include "scanners/places/PlacePattern.h"

namespace brimvault::scanners {

namespace {

using files::DirectoryHandle;
using files::NodeKind;

bool is(const DirectoryHandle& folder, const char* name, NodeKind kind) {
    const auto status = files::statusAt(folder.descriptor(), name);
    return status && status->kind == kind;
}

// Settings as all of these programs write them; other programs have files of these names too.
bool isSettings(const DirectoryHandle& folder, const char* name) { return files::beginningOf(folder, name, 1) == "{"; }

bool holdsFolder(const DirectoryHandle& folder, const char* name, const char* inner) {
    const auto child = folder.openChild(name);
    return child && is(*child, inner, NodeKind::directory);
}

}  // namespace

bool isProfileFolder(const DirectoryHandle& folder) {
    const std::array<bool, 8> marks = {
        isSettings(folder, "Local State"),
        isSettings(folder, "Preferences"),
        holdsFolder(folder, "Local Storage", "leveldb"),
        is(folder, "GPUCache", NodeKind::directory),
        is(folder, "Code Cache", NodeKind::directory),
        is(folder, "SingletonLock", NodeKind::link) || is(folder, "SingletonCookie", NodeKind::link),
        is(folder, "DIPS", NodeKind::regular),
        is(folder, "Network Persistent State", NodeKind::regular),
    };
    constexpr auto enough = 2;
    return std::count(marks.begin(), marks.end(), true) >= enough;
}

std::vector<std::filesystem::path> profilesIn(const DirectoryHandle& folder,
                                              const std::function<bool(std::string_view name)>& isData,
                                              const std::stop_token& stop) {
    std::vector<std::filesystem::path> found = {{}};
    for (const char* pattern : {"Default", "Profile #", "Partitions/*", "*"}) {
        forEachFitting(folder, pattern, stop, [&](const PlaceMatch& match) {
            const bool isKnown = std::find(found.begin(), found.end(), match.path) != found.end();
            if (match.kind != NodeKind::directory || isKnown || isData(match.path.begin()->native())) {
                return;
            }
            const auto profile = match.parent.openChild(match.path.filename().c_str());
            if (profile && (std::string_view(pattern) != "*" || isSettings(*profile, "Preferences"))) {
                found.push_back(match.path);
            }
        });
    }
    return found;
}

}  // namespace brimvault::scanners
