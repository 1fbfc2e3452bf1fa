#include "engine/model/FileManager.h"

#include "files/ExtendedAttributes.h"
#include "files/NodeStatus.h"
#include "files/trees/Measure.h"
#include "platform/text/DisplayText.h"

namespace brimvault::engine {

namespace {

// A file's own length; for a folder the chosen one of the sums over its contents.
std::uint64_t sizeOfFile(const std::filesystem::path& path, std::uint64_t (*choose)(const files::TreeSizes&)) {
    const auto status = files::statusOf(path);
    if (!status) {
        return 0;
    }
    return status->kind == files::NodeKind::directory ? choose(files::measureContents(path)) : status->size;
}

}  // namespace

bool FileManager::isFileLocked(const std::filesystem::path& path) {
    const auto status = files::statusOf(path);
    return status && status->immutable;
}

std::optional<std::string> FileManager::extendedAttributeWithName(const std::string& name,
                                                                  const std::filesystem::path& path) {
    auto bytes = files::extendedAttribute(path, name);
    return bytes.empty() ? std::nullopt : std::optional(std::move(bytes));
}

QStringList FileManager::extendedAttributesListAtPath(const std::filesystem::path& path) {
    QStringList names;
    for (const auto& name : files::extendedAttributeNames(path)) {
        names.append(QString::fromStdString(name));
    }
    return names;
}

bool FileManager::isAppPathInQuarantine(const std::filesystem::path& path) {
    // The attribute begins with hexadecimal flags up to the first semicolon; this one is set once the user agreed.
    constexpr unsigned userApproved = 0x40;
    const auto mark = extendedAttributeWithName("com.apple.quarantine", path);
    if (!mark) {
        return false;
    }
    const QString field = QString::fromStdString(*mark).section(QLatin1Char(';'), 0, 0);
    bool reads = false;
    const qulonglong flags = field.toULongLong(&reads, 16);
    return reads && (flags & userApproved) == 0;
}

std::uint64_t FileManager::sizeOfFileAtPath(const std::filesystem::path& path, FileProperty property) {
    if (property == FileProperty::allocatedSize) {
        return sizeOfFile(path, [](const files::TreeSizes& sizes) { return sizes.allocated; });
    }
    return sizeOfFile(path, [](const files::TreeSizes& sizes) { return sizes.logical; });
}

std::uint64_t FileManager::fullSizeOfFileAtPath(const std::filesystem::path& path) {
    return sizeOfFile(path, [](const files::TreeSizes& sizes) { return sizes.logical + sizes.folders; });
}

std::int64_t FileManager::numberOfFilesInFolder(const std::filesystem::path& path,
                                                files::HiddenEntries countHiddenFiles) {
    std::int64_t count = 0;
    // Counts what can be read.
    (void)files::forEachChild(path, countHiddenFiles, [&](const files::DirectoryEntry&) {
        ++count;
        return true;
    });
    return count;
}

QDateTime FileManager::dateOf(std::chrono::system_clock::time_point time) {
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

std::optional<QDateTime> FileManager::modificationDateOfFilePath(const std::filesystem::path& path) {
    const auto status = files::statusOf(path);
    return status ? std::optional(dateOf(status->modified)) : std::nullopt;
}

std::optional<QString> FileManager::stringmodificationDateOfFilePath(const std::filesystem::path& path,
                                                                     QLocale::FormatType style) {
    const auto modified = modificationDateOfFilePath(path);
    return modified ? std::optional(QLocale().toString(modified->date(), style)) : std::nullopt;
}

QString FileManager::displayNameAtPath(const std::filesystem::path& path) {
    const auto name = path.has_filename() ? path.filename() : path.parent_path().filename();
    return platform::displayText(name.extension() == ".app" ? name.stem() : name);
}

QString FileManager::getLocalizedPath(const std::filesystem::path& path) { return platform::displayText(path); }

QString FileManager::displayPathAtPath(const std::filesystem::path& path) {
    return platform::displayText(path).replace(QLatin1Char(':'), QLatin1Char('/'));
}

}  // namespace brimvault::engine
