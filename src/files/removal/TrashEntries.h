#pragma once

#include <string>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/Result.h"

namespace brimvault::files {

/// The two folders of a trash folder, held open. The rules are those of freedesktop.org for the Trash, version 1.0.
struct OpenTrash {
    DirectoryHandle items;    ///< "files"
    DirectoryHandle records;  ///< "info", with a NAME.trashinfo for each item
};

/// Moves the entry of that name in a folder, which has that identity, into the trash, with a record that it came from
/// `recordedPath` and when. Its name there: its own or, where that is taken, with a number before the extension. ESTALE
/// if something else has the name by now. After a failure the entry is in its place, and there is no record. Done only
/// within one mount, by renaming, of the caller's own folder whatever its mode: EXDEV otherwise, EINVAL on a file
/// system that cannot rename without replacing. Any thread.
[[nodiscard]] Result<std::string> moveIntoTrash(const DirectoryHandle& folder, const std::string& name,
                                                const FileIdentity& identity, const OpenTrash& trash,
                                                const std::string& recordedPath);

/// Moves the item of that name in the trash, which has that identity, to a name in a folder, and removes its record. 0,
/// or an errno value, with which all is as it was: EEXIST where the name is taken, ESTALE if the item is another one by
/// now. Any thread.
[[nodiscard]] int moveOutOfTrash(const OpenTrash& trash, const std::string& nameInTrash, const FileIdentity& identity,
                                 const DirectoryHandle& folder, const std::string& name);

}  // namespace brimvault::files
