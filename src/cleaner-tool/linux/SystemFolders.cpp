#include <initializer_list>

#include "cleaner-tool/KeptFolders.h"

// The Filesystem Hierarchy Standard 3.0, and what current systems add (homes in /var/home, volumes in /run/media).

namespace brimvault::cleaner {

std::vector<KeptPath> systemFolders() {
    std::vector<KeptPath> folders;
    const auto add = [&folders](Keep keep, std::initializer_list<const char*> paths) {
        for (const char* path : paths) {
            folders.push_back({path, keep, LinksOnWay::follow});
        }
    };
    // The user's own home is pinned elsewhere: its contents may be removed.
    add(Keep::everything,
        {"/bin", "/boot",   "/dev",  "/efi",  "/etc", "/home", "/lib",  "/lib32", "/lib64",   "/libx32", "/lost+found",
         "/nix", "/ostree", "/proc", "/root", "/run", "/sbin", "/snap", "/sys",   "/sysroot", "/usr",    "/var"});
    // Mount points of volumes, folders that all users share, and "/" itself.
    add(Keep::deeperMayGo,
        {"/", "/media", "/mnt", "/opt", "/run/media", "/srv", "/tmp", "/var/home", "/var/mnt", "/var/tmp", "/Library"});
    return folders;
}

std::vector<std::filesystem::path> sharedSectionFolders() { return {"/Applications", "/Library/Logs"}; }

}  // namespace brimvault::cleaner
