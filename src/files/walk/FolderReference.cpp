#include "files/walk/FolderReference.h"

#include <utility>

namespace brimvault::files {

namespace {

constexpr std::size_t filesToShare = 256;  // visiting fewer costs less than sharing them

std::string takeHalfOfNames(std::string& names) {
    auto last = names.rfind('\0', names.size() / 2 - 1);
    if (last == std::string::npos) {
        last = names.find('\0');
    }
    std::string taken = names.substr(0, last + 1);
    names.erase(0, last + 1);
    return taken;
}

}  // namespace

ListedFiles ListedFiles::takeHalf() {
    const auto end = files.begin() + static_cast<std::ptrdiff_t>(files.size() / 2);
    ListedFiles taken{entries, {files.begin(), end}};
    files.erase(files.begin(), end);
    return taken;
}

std::string FolderReference::takePendingFolder() {
    if (pendingFolders.empty()) {
        return {};
    }
    pendingFolders.pop_back();  // the zero byte that ends the last name
    const auto before = pendingFolders.rfind('\0');
    const auto start = before == std::string::npos ? 0 : before + 1;
    std::string taken = pendingFolders.substr(start);
    pendingFolders.resize(start);
    return taken;
}

bool FolderReference::canBeHalved() const {
    return pendingFiles.files.empty() ? pendingFolders.find('\0') + 1 < pendingFolders.size()
                                      : pendingFiles.files.size() >= filesToShare;
}

FolderReference FolderReference::takeHalf(DirectoryHandle another) {
    FolderReference taken{folder, std::move(another), {}};
    if (pendingFiles.files.empty()) {
        taken.pendingFolders = takeHalfOfNames(pendingFolders);
    } else {
        taken.pendingFiles = pendingFiles.takeHalf();
    }
    return taken;
}

}  // namespace brimvault::files
