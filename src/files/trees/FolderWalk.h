#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

enum class Descend { yes, no };

/// A folder that a walk has come to: where it is, and as a name in the open folder that holds it. Valid during the
/// call.
struct FoundFolder {
    const std::filesystem::path& path;
    const DirectoryHandle& parent;
    const char* name;

    /// Another mount begins here, into which no walk goes.
    [[nodiscard]] bool isMountPoint() const;
};

/// Calls with every folder below the one given, each before those inside it, and goes into it as the call answers.
/// Hidden are the names that begin with a full stop; nothing in a hidden folder is visited either. No link is followed
/// and no mount below the first folder entered; a folder that cannot be read holds nothing. False when it was stopped
/// before its end. Any thread.
[[nodiscard]] bool forEachFolder(const std::filesystem::path& folder, HiddenEntries hidden, const std::stop_token& stop,
                                 const std::function<Descend(const FoundFolder&)>& call);
/// The same below a folder that is held open; `path` is where it is.
[[nodiscard]] bool forEachFolder(const DirectoryHandle& folder, const std::filesystem::path& path, HiddenEntries hidden,
                                 const std::stop_token& stop, const std::function<Descend(const FoundFolder&)>& call);

}  // namespace brimvault::files
