#include "engine/removal/TrashCleanup.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <vector>

#include "files/removal/Remove.h"
#include "files/removal/ReplaceFile.h"
#include "platform/TrashFolders.h"
#include "platform/formats/FileContents.h"
#include "platform/text/PathBytes.h"

// The rules of freedesktop.org for the Trash, version 1.0. "directorysizes" is a cache of the desktop's: a line has the
// size of a folder, the time of its record and its percent-encoded name. It is replaced at once, by renaming a new
// file.

namespace brimvault::engine {

namespace {

namespace fs = std::filesystem;

constexpr const char* sizesName = "directorysizes";
constexpr std::size_t maxSizesBytes = 16UL * 1024 * 1024;  // some 100,000 folders
constexpr std::chrono::hours young{24};

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// The name in a line without its line break; none where the line is not understood.
std::optional<std::string> nameIn(std::string_view line) {
    const auto first = line.find(' ');
    const auto second = first == std::string_view::npos ? first : line.find(' ', first + 1);
    if (second == std::string_view::npos || !isNumber(line.substr(0, first)) ||
        !isNumber(line.substr(first + 1, second - first - 1))) {
        return std::nullopt;
    }
    return platform::percentDecoded(line.substr(second + 1));
}

void dropSizesOf(const std::set<std::string>& names, const fs::path& path) {
    const auto trash = files::DirectoryHandle::open(path);
    const auto text =
        trash ? platform::FileContents::read(*trash, sizesName, maxSizesBytes) : std::optional<std::string>();
    const auto kept = text ? withoutSizesOf(names, *text) : std::string();
    if (text && kept.size() < text->size()) {
        (void)files::replaceFile(*trash, sizesName, kept);
    }
}

std::vector<std::string> namesOfRecords(const files::DirectoryHandle& records) {
    std::vector<std::string> names;
    // What can be read of it.
    (void)files::forEachChild(records, files::HiddenEntries::include, [&](const files::DirectoryEntry& entry) {
        const std::string_view name = entry.name;
        if (name.ends_with(platform::TrashFolders::recordEnding) &&
            name.size() > platform::TrashFolders::recordEnding.size()) {
            names.emplace_back(name);
        }
        return true;
    });
    return names;
}

bool isOldRecord(const files::DirectoryHandle& records, const std::string& name, TrashCleanup::Clock::time_point now) {
    const auto status = files::statusAt(records.descriptor(), name.c_str());
    return status && status->kind == files::NodeKind::regular && status->owner == ::geteuid() &&
           now - std::max(status->modified, status->changed) > young;
}

void removeOrphansOf(const fs::path& path, TrashCleanup::Clock::time_point now) {
    const auto trash = files::DirectoryHandle::open(path);
    if (!trash) {
        return;
    }
    const auto items = trash->openChild("files");
    const auto records = trash->openChild("info");
    if (!items || !records) {
        return;
    }
    for (const auto& name : namesOfRecords(*records)) {
        const auto item = name.substr(0, name.size() - platform::TrashFolders::recordEnding.size());
        if (isOldRecord(*records, name, now) && files::statusAt(items->descriptor(), item.c_str()).code() == ENOENT) {
            (void)files::removeFileIn(*records, name.c_str());
        }
    }
}

}  // namespace

std::string withoutSizesOf(const std::set<std::string>& names, std::string_view text) {
    std::string kept;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size() - 1) + 1;
        const auto line = text.substr(0, end);
        const auto name = nameIn(line.ends_with('\n') ? line.substr(0, line.size() - 1) : line);
        if (!name || !names.contains(*name)) {
            kept += line;
        }
        text.remove_prefix(end);
    }
    return kept;
}

TrashCleanup::~TrashCleanup() {
    try {
        for (const auto& [trash, names] : changed_) {
            dropSizesOf(names, trash);
        }
    } catch (const std::exception&) {  // out of memory: the desktop counts the folders anew
        return;
    }
}

std::optional<files::FileIdentity> TrashCleanup::recordOf(const fs::path& item) {
    const auto record = platform::TrashFolders::recordOfItem(item);
    const auto status = record ? files::statusOf(*record) : files::Result<files::NodeStatus>::failed(ENOENT);
    return status && status->kind == files::NodeKind::regular ? std::optional(status->identity) : std::nullopt;
}

// After its item, so that whatever ends the process in between leaves no item without a record.
void TrashCleanup::onRemoved(const fs::path& item, const std::optional<files::FileIdentity>& record) {
    onLeft(item);
    const auto path = platform::TrashFolders::recordOfItem(item);
    if (!path || !record) {
        return;
    }
    if (const auto records = files::DirectoryHandle::open(path->parent_path())) {
        const auto status = files::statusAt(records->descriptor(), path->filename().c_str());
        if (status && status->identity == *record) {
            (void)files::removeFileIn(*records, path->filename().c_str());  // without its item it is harmless
        }
    }
}

void TrashCleanup::onLeft(const fs::path& item) {
    if (const auto record = platform::TrashFolders::recordOfItem(item)) {
        changed_[record->parent_path().parent_path()].insert(item.filename().native());
    }
}

void TrashCleanup::removeOrphans(Clock::time_point now) const {
    for (const auto& [trash, names] : changed_) {
        removeOrphansOf(trash, now);
    }
}

}  // namespace brimvault::engine
