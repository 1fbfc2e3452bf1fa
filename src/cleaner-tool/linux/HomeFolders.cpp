#include "cleaner-tool/KeptFolders.h"

// The base directories (XDG Base Directory, freedesktop.org) by their defaults, and the folders of Flatpak and Snap. A
// variable that names another one is known to the application alone, which asks to keep that, too.

namespace brimvault::cleaner {

std::vector<KeptPath> foldersOfProgramsIn(const std::filesystem::path& home) {
    const KeptBelow nothing;
    const KeptBelow children{1, {}};
    const KeptBelow ofFlatpak{2, "tmp"};  // APPLICATION, APPLICATION/cache and APPLICATION/cache/tmp
    const KeptBelow ofSnap{3, {}};        // NAME, NAME/REVISION and NAME/REVISION/.cache
    const auto kept = [&](const char* path, Keep keep, const KeptBelow& below) {
        return KeptPath{home / path, keep, LinksOnWay::followVisible, below};
    };
    return {{home, Keep::itself, LinksOnWay::refuse, children},
            kept(".config", Keep::itself, children),
            kept(".local", Keep::itself, children),
            kept(".local/share", Keep::itself, children),
            kept(".local/state", Keep::itself, children),
            kept(".var", Keep::itself, nothing),
            kept(".var/app", Keep::itself, ofFlatpak),
            kept("snap", Keep::itself, ofSnap),
            kept(".mozilla", Keep::itself, nothing),
            kept(".ssh", Keep::everything, nothing),
            kept(".gnupg", Keep::everything, nothing)};
}

}  // namespace brimvault::cleaner
