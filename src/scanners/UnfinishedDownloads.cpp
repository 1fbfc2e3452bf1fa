#include "scanners/UnfinishedDownloads.h"

#include <algorithm>
#include <array>

namespace brimvault::scanners {

namespace {

using files::NodeKind;

// Of browsers and of programs that download, as each names them.
constexpr std::array<std::string_view, 9> dataEndings = {".part", ".crdownload", ".opdownload", ".download", ".partial",
                                                         ".!qB",  ".!ut",        ".filepart",   ".tmp"};
// Many programs name files so; it says something only beside a file of the later name.
constexpr std::string_view temporaryEnding = ".tmp";
constexpr std::string_view partEnding = ".part";
// aria2 loads into a file of the later name from the start, youtube-dl into NAME.part.
constexpr std::string_view ariaEnding = ".aria2";
constexpr std::string_view ytdlEnding = ".ytdl";

bool hasEnding(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() && name.ends_with(ending);
}

std::string withoutEnding(const std::string& name) { return name.substr(0, name.rfind('.')); }

// Firefox loads "film.mkv" into "film.8RANDOM8.mkv.part"; empty for a name without such a part.
std::string withoutRandomPart(const std::string& name) {
    constexpr std::size_t length = 8;
    const auto extension = name.rfind('.');
    const auto before = extension == std::string::npos ? extension : name.substr(0, extension).rfind('.');
    if (before == std::string::npos || before == 0 || extension - before - 1 != length) {
        return {};
    }
    return name.substr(0, before) + name.substr(extension);
}

}  // namespace

void UnfinishedDownloads::note(std::string_view name) {
    const auto isEnding = [name](std::string_view ending) { return hasEnding(name, ending); };
    if (isEnding(ariaEnding) || isEnding(ytdlEnding)) {
        control_.emplace_back(name);
    } else if (std::any_of(dataEndings.begin(), dataEndings.end(), isEnding)) {
        data_.emplace_back(name);
    }
}

void UnfinishedDownloads::lookBeside(const files::DirectoryHandle& folder) {
    for (const auto& name : data_) {
        addData(folder, name);
    }
    for (const auto& name : control_) {
        addControl(folder, name);
    }
}

const std::vector<UnfinishedDownloads::Companion>& UnfinishedDownloads::companionsOf(std::string_view name) const {
    static const std::vector<Companion> none;
    const auto row = rows_.find(name);
    return row == rows_.end() ? none : row->second;
}

void UnfinishedDownloads::addData(const files::DirectoryHandle& folder, const std::string& name) {
    const auto later = withoutEnding(name);
    if (hasEnding(name, temporaryEnding) && !files::statusAt(folder.descriptor(), later.c_str())) {
        return;
    }
    const auto& companions = rows_[name];
    if (hasEnding(name, partEnding)) {
        addPlaceholder(folder, name, later);
        if (const auto plain = withoutRandomPart(later); companions.empty() && !plain.empty()) {
            addPlaceholder(folder, name, plain);
        }
    }
}

// Beside the file of any other program an empty one says nothing: it may be a document that is just begun.
void UnfinishedDownloads::addPlaceholder(const files::DirectoryHandle& folder, const std::string& row,
                                         const std::string& name) {
    const auto status = files::statusAt(folder.descriptor(), name.c_str());
    if (status && status->kind == NodeKind::regular && status->size == 0) {
        addCompanion(row, {name, *status, true});
    }
}

// The file that the program notes about is the row; without that file the note is a row by itself.
void UnfinishedDownloads::addControl(const files::DirectoryHandle& folder, const std::string& name) {
    const auto later = withoutEnding(name);
    const auto row = hasEnding(name, ytdlEnding) ? later + std::string(partEnding) : later;
    auto loaded = files::statusAt(folder.descriptor(), row.c_str());
    auto status = files::statusAt(folder.descriptor(), name.c_str());
    const bool isRow = loaded && (loaded->kind == NodeKind::regular || loaded->kind == NodeKind::directory);
    if (isRow && status && status->kind == NodeKind::regular && row.front() != '.' && !isCompanion(row)) {
        addCompanion(row, {name, *status, false});
    } else {
        rows_.try_emplace(name);
    }
}

void UnfinishedDownloads::addCompanion(const std::string& row, const Companion& companion) {
    if (companions_.insert(companion.name).second) {
        rows_[row].push_back(companion);
    }
}

}  // namespace brimvault::scanners
