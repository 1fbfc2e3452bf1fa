#include "files/removal/ReplaceFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "files/Create.h"

namespace brimvault::files {

int replaceFile(const DirectoryHandle& folder, const std::string& name, std::string_view text) {
    const auto before = statusAt(folder.descriptor(), name.c_str());
    if (!before || before->kind != NodeKind::regular) {
        return before ? EINVAL : before.code();
    }
    const auto newName = name + "." + std::to_string(::getpid());
    // Of a process of this number that was ended before it renamed its own.
    if (const auto left = statusAt(folder.descriptor(), newName.c_str()); left && left->kind == NodeKind::regular) {
        ::unlinkat(folder.descriptor(), newName.c_str(), 0);
    }
    const auto file = createFile(folder, newName, before->permissions);
    if (!file) {
        return file.code();
    }
    int code = writeAll(*file, text);
    if (code == 0 && ::renameat(folder.descriptor(), newName.c_str(), folder.descriptor(), name.c_str()) != 0) {
        code = errno;
    }
    if (code != 0) {
        ::unlinkat(folder.descriptor(), newName.c_str(), 0);
    }
    return code;
}

}  // namespace brimvault::files
