#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace brimvault::platform {

/// A folder of the home that programs share, and what of theirs stays in it whatever is installed.
struct ProgramFolder {
    std::filesystem::path named;  ///< absolute, symbolic links unresolved; it may be missing
    unsigned levels = 0;          ///< folders down to this depth are never removed; 1 for its direct children
    std::string name;             ///< nor, one level deeper, are folders of this name; empty for none
    bool isPrivate = false;       ///< everything in it is a secret, or belongs to one application or package
};

/// The folders in which the user's programs keep settings, data and state, each by default and by what names it in the
/// environment, and those that hold secrets. Does not access the disk. Any thread.
[[nodiscard]] std::vector<ProgramFolder> programFolders();

}  // namespace brimvault::platform
