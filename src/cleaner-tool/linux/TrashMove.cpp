#include "cleaner-tool/TrashMove.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>

#include "files/DirectoryHandle.h"
#include "files/FileDescriptor.h"

// The rules of freedesktop.org for the Trash, version 1.0: the record is made first and reserves the name (O_EXCL),
// then the item is moved.

namespace brimvault::cleaner {

namespace {

using files::DirectoryHandle;

constexpr int maxNames = 10'000;  // tried before giving up

struct Trash {
    DirectoryHandle items;
    DirectoryHandle records;
};

std::optional<DirectoryHandle> openFolderOf(const Requester& requester, const std::filesystem::path& folder) {
    auto handle = DirectoryHandle::open(
        folder, [&](const auto& passed, const auto& status) { return requester.maySearch(passed, status); });
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    return status && status->owner == requester.user ? std::optional(std::move(*handle)) : std::nullopt;
}

bool isOnMountOf(const DirectoryHandle& folder, const files::NodeStatus& node) {
    const auto status = folder.status();
    return status && status->mount == node.mount;
}

std::string percentEncoded(const std::string& path) {
    constexpr const char* plain = "/-_.~0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::string encoded;
    for (const char byte : path) {
        if (std::char_traits<char>::find(plain, std::char_traits<char>::length(plain), byte) != nullptr) {
            encoded.push_back(byte);
        } else {
            std::array<char, 4> code{};
            std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
            encoded.append(code.data());
        }
    }
    return encoded;
}

std::string recordOf(const std::filesystem::path& path) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::array<char, 32> date{};
    if (::localtime_r(&now, &local) == nullptr ||
        std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local) == 0) {
        date = {"1970-01-01T00:00:00"};
    }
    return "[Trash Info]\nPath=" + percentEncoded(path.native()) + "\nDeletionDate=" + date.data() + "\n";
}

enum class Writing { done, nameTaken, failed };

// Readable by the desktop, which runs as the user. Written and made readable through the descriptor, as the name could
// be exchanged meanwhile.
Writing writeRecord(const DirectoryHandle& records, const std::string& name, const std::string& text) {
    constexpr mode_t readByAll = 0644;
    const files::FileDescriptor file(
        ::openat(records.descriptor(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, readByAll));
    if (!file.isOpen()) {
        return errno == EEXIST ? Writing::nameTaken : Writing::failed;
    }
    if (::fchmod(file.number(), readByAll) != 0 ||
        ::write(file.number(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        ::unlinkat(records.descriptor(), name.c_str(), 0);
        return Writing::failed;
    }
    return Writing::done;
}

// The names for an item in the trash: its own and, where that is taken, with a number before the extension. No name may
// have more than 255 bytes, the record's included.
std::string candidate(const std::filesystem::path& name, int number) {
    if (number == 1) {
        return name;
    }
    constexpr std::size_t maxLength = 255 - sizeof(".10000.trashinfo");
    std::string stem = name.stem();
    std::string extension = name.extension();
    if (extension.size() > maxLength / 2) {  // no extension, but a full stop inside a long name
        stem += extension;
        extension.clear();
    }
    stem.resize(std::min(stem.size(), maxLength - extension.size()));
    return stem + "." + std::to_string(number) + extension;
}

// 0, or an errno value: EEXIST where the new name is taken. If another object was put at the name since its status was
// read (a race), that object is moved back.
int moveItem(const DirectoryHandle& parent, const std::string& name, const files::FileIdentity& identity,
             const DirectoryHandle& target, const std::string& newName) {
    if (::renameat2(parent.descriptor(), name.c_str(), target.descriptor(), newName.c_str(), RENAME_NOREPLACE) != 0) {
        return errno;
    }
    const auto moved = files::statusAt(target.descriptor(), newName.c_str());
    if (moved && moved->identity != identity) {
        (void)::renameat2(target.descriptor(), newName.c_str(), parent.descriptor(), name.c_str(), RENAME_NOREPLACE);
        return ESTALE;
    }
    return 0;
}

std::optional<std::string> moveUnderFreeName(const DirectoryHandle& parent, const std::filesystem::path& path,
                                             const files::FileIdentity& identity, const Trash& trash) {
    const auto record = recordOf(path);
    for (int number = 1; number <= maxNames; ++number) {
        const auto name = candidate(path.filename(), number);
        const auto recordName = name + ".trashinfo";
        const auto writing = writeRecord(trash.records, recordName, record);
        if (writing == Writing::failed && errno != ENAMETOOLONG) {
            return std::nullopt;
        }
        if (writing != Writing::done) {
            continue;
        }
        const int code = moveItem(parent, path.filename(), identity, trash.items, name);
        if (code == 0) {
            return name;
        }
        ::unlinkat(trash.records.descriptor(), recordName.c_str(), 0);
        if (code != EEXIST) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

std::filesystem::path trashOfHome(const std::filesystem::path& home) { return home / ".local" / "share" / "Trash"; }

std::optional<std::filesystem::path> moveToTrash(const std::filesystem::path& path, const std::filesystem::path& trash,
                                                 const Requester& requester, files::RemovalGuard& guard) {
    if (!files::isPlainAbsolute(path)) {
        return std::nullopt;
    }
    auto items = openFolderOf(requester, trash / "files");
    auto records = openFolderOf(requester, trash / "info");
    const auto parent = DirectoryHandle::open(
        path.parent_path(), [&](const auto& folder, const auto& passed) { return guard.onWay(folder, passed); });
    if (!items || !records || !parent) {
        return std::nullopt;
    }
    const auto status = files::statusAt(parent->descriptor(), path.filename().c_str());
    if (!status || !isOnMountOf(*parent, *status) || !isOnMountOf(*items, *status) || !guard.mayRemove(*status)) {
        return std::nullopt;
    }
    const auto name = moveUnderFreeName(*parent, path, status->identity, {std::move(*items), std::move(*records)});
    return name ? std::optional(trash / "files" / *name) : std::nullopt;
}

}  // namespace brimvault::cleaner
