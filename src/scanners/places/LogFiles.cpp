#include "scanners/places/LogFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

#include "files/trees/Inspect.h"
#include "scanners/places/PlacePattern.h"

namespace brimvault::scanners {

namespace fs = std::filesystem;

namespace {

// The journal of a database has a number for a name.
bool isNumbered(std::string_view name) {
    const auto rest = name.substr(std::min(name.find_first_not_of("0123456789"), name.size()));
    constexpr std::string_view ending = ".log";
    return rest.starts_with(ending) &&
           (rest == ending || std::isalpha(static_cast<unsigned char>(rest[ending.size()])) == 0);
}

std::string lowerCase(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

bool isCoreDump(const files::DirectoryHandle& folder, const char* name) {
    constexpr std::size_t dataPlace = 5;
    constexpr std::size_t typePlace = 16;
    constexpr char bigEndian = 2;
    constexpr char coreType = 4;
    const auto head = files::beginningOf(folder, name, typePlace + 2);
    if (head.size() < typePlace + 2 || !head.starts_with("\177ELF")) {
        return false;
    }
    const bool isBigEndian = head[dataPlace] == bigEndian;
    return head[typePlace + (isBigEndian ? 1 : 0)] == coreType && head[typePlace + (isBigEndian ? 0 : 1)] == 0;
}

// What one level of a folder holds.
struct Level {
    std::vector<std::string> files;
    std::vector<std::string> folders;
    bool isDatabase = false;  ///< of the kind that keeps its journal in files with a name like a log's
};

Level levelOf(const files::DirectoryHandle& folder, const std::stop_token& stop) {
    Level level;
    bool hasCurrent = false;
    bool hasManifest = false;
    (void)folder.forEachEntry([&](const files::DirectoryEntry& entry) {
        const std::string_view name = entry.name;
        hasCurrent = hasCurrent || name == "CURRENT";
        hasManifest = hasManifest || name.starts_with("MANIFEST-");
        if (entry.kind == files::NodeKind::regular) {
            level.files.emplace_back(name);
        } else if (entry.kind == files::NodeKind::directory) {
            level.folders.emplace_back(name);
        }
        return !stop.stop_requested();
    });
    level.isDatabase = hasCurrent || hasManifest;
    std::sort(level.files.begin(), level.files.end());
    std::sort(level.folders.begin(), level.folders.end());
    return level;
}

// Of a file with holes, which a writer leaves that goes on where it was after the file was emptied.
std::uint64_t sizeOf(const files::NodeStatus& status) {
    constexpr std::uint64_t block = 4096;  // a file system may keep less than that elsewhere than in blocks
    return status.size > block ? std::min(status.size, status.allocated) : status.size;
}

}  // namespace

bool LogNames::isLog(const PlaceRule& rule, std::string_view name) const {
    const auto [grammar, isNew] = grammars_.try_emplace(rule.grammar);
    if (isNew) {  // at both ends: "$" alone also fits before a line feed at the end
        grammar->second.setPattern(QRegularExpression::anchoredPattern(QLatin1String(rule.grammar)));
    }
    const QString bytes = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
    return !isNumbered(name) && lowerCase(name).find("history") == std::string::npos &&
           grammar->second.match(bytes).hasMatch();
}

bool LogNames::isSpared(std::string_view folder) const {
    const auto name = lowerCase(folder);
    const auto last = std::string_view(name).substr(name.rfind('.') + 1);
    return std::any_of(rules_.begin(), rules_.end(), [&](const PlaceRule& rule) {
        return rule.base == PlaceBase::anywhere &&
               std::any_of(rule.patterns.begin(), rule.patterns.end(),
                           [&](const char* pattern) { return fits(name, pattern) || fits(last, pattern); });
    });
}

LogFiles::LogFiles(const PlaceRow& row, const Scan& scan) : row_(row), rule_(row.rule) {
    for (const auto& folder : row.folders) {
        take(folder, scan);
    }
}

bool LogFiles::isSpared(const fs::path& path, const LogNames& names) const {
    const auto inside = path.lexically_relative(row_.root->resolved);
    return std::any_of(inside.begin(), inside.end(),
                       [&names](const fs::path& name) { return names.isSpared(name.native()); });
}

void LogFiles::take(const PlaceFolder& folder, const Scan& scan) {
    if (isSpared(folder.path, scan.names)) {
        return;
    }
    const auto handle = files::DirectoryHandle::openForReading(folder.path);
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    if (status && status->place() == folder.place) {
        takeIn({*handle, folder.path, *folder.rule, scan}, folder.rule->depth);
    }
}

void LogFiles::takeIn(const Folder& folder, int depth) {
    const auto level = levelOf(folder.handle, folder.scan.stop);
    const auto status = folder.handle.status();
    if (level.isDatabase || !status) {
        return;
    }
    for (const auto& name : level.files) {
        if (!folder.scan.names.isLog(folder.rule, name) || folder.scan.stop.stop_requested()) {
            continue;
        }
        const auto file = files::statusAt(folder.handle.descriptor(), name.c_str());
        if (file && file->mount == status->mount) {
            takeFile(folder, name.c_str(), *file);
        }
    }
    for (const auto& name : level.folders) {
        if (depth == 0 || folder.scan.names.isSpared(name) || folder.scan.stop.stop_requested()) {
            continue;
        }
        const auto child = folder.handle.openChild(name.c_str());
        const auto opened =
            child ? child->reopenForReading() : files::Result<files::DirectoryHandle>::failed(child.code());
        if (opened) {
            const auto path = folder.path / name;
            takeIn({*opened, path, folder.rule, folder.scan}, depth - 1);
        }
    }
}

void LogFiles::takeFile(const Folder& folder, const char* name, const files::NodeStatus& status) {
    const bool isOwn = status.kind == files::NodeKind::regular && status.linkCount == 1 && status.owner == ::geteuid();
    const auto size = sizeOf(status);
    if (!isOwn || size == 0 || (folder.rule.evidence.coreDump && !isCoreDump(folder.handle, name)) ||
        !folder.scan.taken.insert(status.identity.digest()).second) {
        return;
    }
    const auto path = (folder.path / "").native();
    if (targets_.empty() || targets_.back().folder->path != path) {
        targets_.push_back({engine::FoundIn::in(folder.path, folder.handle, row_.root), {}});
    }
    targets_.back().names.emplace_back(name);
    targets_.back().expected.push_back({.identity = status.identity.digest()});
    rule_ = count_++ == 0 ? &folder.rule : rule_;
    size_ += size;
    space_.add(files::NamedNode::of(status));
    writer_ = writer_ != 0 ? writer_ : folder.scan.writers().holderOf(status.identity).value_or(0);
}

}  // namespace brimvault::scanners
