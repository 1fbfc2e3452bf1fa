#include "files/MountPoints.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::files {

namespace {

/// A line of /proc/self/mountinfo.
struct Mount {
    std::uint64_t id = 0;
    std::uint64_t parent = 0;
    std::string device;
    std::string root;   ///< what of the device's file system is mounted
    std::string point;  ///< where
};

// Blanks, tabs, line breaks and backslashes stand as three octal digits behind a backslash; nothing else does.
std::string unescaped(std::string_view text) {
    constexpr std::size_t digits = 3;
    constexpr int octal = 8;
    std::string bytes;
    while (!text.empty()) {
        unsigned value = 0;
        const char* const end = text.data() + std::min(text.size(), 1 + digits);
        const bool isEscaped = text.front() == '\\' && text.size() > digits &&
                               std::from_chars(text.data() + 1, end, value, octal).ptr == end;
        bytes.push_back(isEscaped ? static_cast<char>(value) : text.front());
        text.remove_prefix(isEscaped ? 1 + digits : 1);
    }
    return bytes;
}

std::vector<Mount> mounts() {
    std::vector<Mount> all;
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string id;
        std::string parent;
        Mount mount;
        for (auto* field : {&id, &parent, &mount.device, &mount.root, &mount.point}) {
            std::getline(fields, *field, ' ');
        }
        mount.id = std::strtoull(id.c_str(), nullptr, 10);
        mount.parent = std::strtoull(parent.c_str(), nullptr, 10);
        mount.root = unescaped(mount.root);
        mount.point = unescaped(mount.point);
        all.push_back(std::move(mount));
    }
    return all;
}

bool liesIn(const std::string& path, const std::string& holder) {
    return path.starts_with(holder) &&
           (path.size() == holder.size() || path[holder.size()] == '/' || holder.ends_with('/'));
}

// Where a path below the mount lies in the file system of its device, whose mounts are many.
std::string pathInFileSystem(const Mount& mount, const std::string& path) {
    const auto rest = path.substr(std::min(path.size(), mount.point == "/" ? 0 : mount.point.size()));
    return mount.root == "/" ? rest : mount.root + rest;
}

}  // namespace

bool holdsMountPoint(const DirectoryHandle& folder, const std::string& name) {
    std::error_code unknown;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder.descriptor()), unknown);
    const auto status = folder.status();
    const auto all = mounts();
    const auto withId = [&](std::uint64_t id) {
        return std::find_if(all.begin(), all.end(), [id](const auto& mount) { return mount.id == id; });
    };
    const auto own = withId(status ? status->mount : 0);
    if (unknown || own == all.end() || !liesIn(path.native(), own->point)) {
        return true;
    }
    const auto entry = pathInFileSystem(*own, (path / name).native());
    return std::any_of(all.begin(), all.end(), [&](const Mount& mount) {
        const auto parent = withId(mount.parent);
        return parent != all.end() && parent->device == own->device && mount.id != parent->id &&
               liesIn(pathInFileSystem(*parent, mount.point), entry);
    });
}

}  // namespace brimvault::files
