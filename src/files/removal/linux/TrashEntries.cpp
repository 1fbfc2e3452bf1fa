#include "files/removal/TrashEntries.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "files/Create.h"
#include "files/MountPoints.h"
#include "files/removal/OwnFolders.h"

namespace brimvault::files {

namespace {

constexpr int maxNames = 10'000;  // tried before giving up
constexpr const char* recordEnding = ".trashinfo";

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

std::string recordOf(const std::string& path) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::array<char, 32> date{};
    if (::localtime_r(&now, &local) == nullptr ||
        std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local) == 0) {
        date = {"1970-01-01T00:00:00"};
    }
    return "[Trash Info]\nPath=" + percentEncoded(path) + "\nDeletionDate=" + date.data() + "\n";
}

// Readable by the desktop, which runs as the user. 0, or an errno value: EEXIST where the name is taken.
int writeRecord(const DirectoryHandle& records, const std::string& name, const std::string& text) {
    constexpr std::uint32_t readByAll = 0644;
    const auto file = createFile(records, name, readByAll);
    const int code = file ? writeAll(*file, text) : file.code();
    if (file && code != 0) {
        ::unlinkat(records.descriptor(), name.c_str(), 0);
    }
    return code;
}

// So many bytes of a text in UTF-8, or fewer, that no character is cut.
std::size_t endOfCharacters(const std::string& text, std::size_t length) {
    constexpr unsigned kind = 0xC0;
    constexpr unsigned goesOn = 0x80;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & kind) == goesOn) {
        --length;
    }
    return length;
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
    if (stem.size() > maxLength - extension.size()) {
        stem.resize(endOfCharacters(stem, maxLength - extension.size()));
    }
    return stem + "." + std::to_string(number) + extension;
}

// 0, or an errno value: EEXIST where the new name is taken. If another object was put at the name since its status was
// read (a race), that object is moved back.
int moveItem(const DirectoryHandle& parent, const std::string& name, const FileIdentity& identity,
             const DirectoryHandle& target, const std::string& newName) {
    const auto rename = [&] {
        constexpr unsigned flags = RENAME_NOREPLACE;
        return ::renameat2(parent.descriptor(), name.c_str(), target.descriptor(), newName.c_str(), flags) == 0 ? 0
                                                                                                                : errno;
    };
    int code = rename();
    if (code == EACCES) {  // as of a folder that changes its parent
        code = withOwnFolderWritable(parent, name.c_str(), identity, rename);
    }
    if (code != 0) {
        return code;
    }
    const auto moved = statusAt(target.descriptor(), newName.c_str());
    if (moved && moved->identity != identity) {
        (void)::renameat2(target.descriptor(), newName.c_str(), parent.descriptor(), name.c_str(), RENAME_NOREPLACE);
        return ESTALE;
    }
    return 0;
}

}  // namespace

// The record is made first and reserves the name (O_EXCL), then the item is moved.
Result<std::string> moveIntoTrash(const DirectoryHandle& folder, const std::string& name, const FileIdentity& identity,
                                  const OpenTrash& trash, const std::string& recordedPath) {
    using Moved = Result<std::string>;
    if (holdsMountPoint(folder, name)) {
        return Moved::failed(EBUSY);
    }
    const auto record = recordOf(recordedPath);
    for (int number = 1; number <= maxNames; ++number) {
        const auto newName = candidate(name, number);
        const auto recordName = newName + recordEnding;
        int code = writeRecord(trash.records, recordName, record);
        if (code == 0) {
            code = moveItem(folder, name, identity, trash.items, newName);
            if (code == 0) {
                return newName;
            }
            ::unlinkat(trash.records.descriptor(), recordName.c_str(), 0);
        }
        if (code != EEXIST && code != ENAMETOOLONG) {
            return Moved::failed(code);
        }
    }
    return Moved::failed(EEXIST);
}

int moveOutOfTrash(const OpenTrash& trash, const std::string& nameInTrash, const FileIdentity& identity,
                   const DirectoryHandle& folder, const std::string& name) {
    const int code = moveItem(trash.items, nameInTrash, identity, folder, name);
    if (code == 0) {
        ::unlinkat(trash.records.descriptor(), (nameInTrash + recordEnding).c_str(), 0);  // best effort
    }
    return code;
}

}  // namespace brimvault::files
