#include "platform/TrashRecord.h"

#include <algorithm>
#include <utility>

#include "platform/TrashFolders.h"
#include "platform/formats/FileContents.h"
#include "platform/text/PathBytes.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

// PATH_MAX: no file can have been at a longer one.
constexpr std::size_t maxPath = 4096;

// The first value of the key in the group "Trash Info"; empty without one.
std::string_view valueOf(std::string_view key, std::string_view text) {
    bool isInGroup = false;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.starts_with('[')) {
            isInGroup = line == "[Trash Info]";
        } else if (isInGroup && line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
            return line.substr(key.size() + 1);
        }
    }
    return {};
}

// Empty for one that leads out of its folder, or cannot have been.
std::string originOf(std::string_view encoded, const fs::path& top) {
    const auto bytes = percentDecoded(encoded);
    if (!bytes || bytes->empty() || bytes->find('\0') != std::string::npos) {
        return {};
    }
    const fs::path named = *bytes;
    if ((!named.is_absolute() && top.empty()) || std::find(named.begin(), named.end(), "..") != named.end()) {
        return {};
    }
    auto path = (top / named).native();
    return path.size() < maxPath ? path : std::string();
}

}  // namespace

TrashRecord TrashRecord::parse(std::string_view text, const fs::path& top) {
    const auto date = valueOf("DeletionDate", text);
    return {originOf(valueOf("Path", text), top),
            QDateTime::fromString(QString::fromLatin1(date.data(), static_cast<qsizetype>(date.size())),
                                  QStringLiteral("yyyy-MM-ddTHH:mm:ss")),
            text.size()};
}

std::optional<TrashRecord> TrashRecords::ofItem(const fs::path& item) {
    if (items_ != item.parent_path()) {
        openRecordsOf(item);
    }
    if (!records_) {
        return std::nullopt;
    }
    const auto name = TrashFolders::recordName(item);
    const auto text = handle_ ? FileContents::read(*handle_, name.c_str(), maxBytes) : std::nullopt;
    return text ? TrashRecord::parse(*text, top_) : TrashRecord();
}

void TrashRecords::openRecordsOf(const fs::path& item) {
    items_ = item.parent_path();
    records_.reset();
    handle_.reset();
    const auto record = TrashFolders::recordOfItem(item);
    if (!record) {
        return;
    }
    records_ = record->parent_path();
    top_ = TrashFolders::topOf(records_->parent_path());
    if (auto opened = files::DirectoryHandle::open(*records_)) {
        handle_ = std::move(*opened);
    }
}

}  // namespace brimvault::platform
