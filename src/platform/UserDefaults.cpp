#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>
#include <algorithm>
#include <limits>
#include <system_error>

#include "platform/LibraryURLs.h"
#include "platform/formats/FileContents.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxFileBytes = 1024UL * 1024;  // the program itself writes some dozens of lines
constexpr const char* group = "General";

enum class FileState { usable, damaged, unreadable };

struct Found {
    FileState state;
    SettingsText text;
};

// Settings are plain text. Anything else could be parsed in part, and the rest be lost with the next change.
bool isPlainText(const std::string& contents) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(QByteArrayView(contents));
    return !decoder.hasError() && std::none_of(text.begin(), text.end(), [](QChar character) {
        return character.category() == QChar::Other_Control && !character.isSpace();
    });
}

Found look(const fs::path& file) {
    const auto contents = FileContents::read(file, maxFileBytes);
    if (!contents) {
        std::error_code ignored;
        const bool isMissing = fs::symlink_status(file, ignored).type() == fs::file_type::not_found;
        return {isMissing ? FileState::usable : FileState::unreadable, {}};
    }
    SettingsText text(*contents);
    const bool isGood = text.isUnderstood() && isPlainText(*contents);
    return {isGood ? FileState::usable : FileState::damaged, std::move(text)};
}

bool moveAside(const fs::path& file) {
    const auto time = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-hhmmss-zzz")).toStdString();
    std::error_code failed;
    fs::rename(file, file.native() + ".damaged-" + time, failed);
    return !failed;
}

// Atomic: writes a new file and renames it over the old one.
bool save(const fs::path& path, const std::string& text) {
    std::error_code failed;
    fs::create_directories(path.parent_path(), failed);
    const bool isNew = !fs::exists(path, failed);
    QSaveFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    if (isNew) {
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    return file.write(QByteArray::fromStdString(text)) == static_cast<qint64>(text.size()) && file.commit();
}

// Escapes all but letters, digits, "_", "-" and "." by their codes, in the format that existing files have.
std::string nameInFile(const QString& key) {
    QString name;
    for (const QChar character : key) {
        const ushort code = character.unicode();
        if (code < 0x80 && (character.isLetterOrNumber() || QStringLiteral("_-.").contains(character))) {
            name.append(character);
        } else {
            name += code > 0xff ? QStringLiteral("%U%1").arg(code, 4, 16, QLatin1Char('0'))
                                : QStringLiteral("%%1").arg(code, 2, 16, QLatin1Char('0')).toUpper();
        }
    }
    return name.toStdString();
}

}  // namespace

UserDefaults::UserDefaults(fs::path file) : file_(std::move(file)) { reload(); }

// Reads the file again, so that changes of another process are kept and damage is noticed.
void UserDefaults::reload() {
    auto found = look(file_);
    if (found.state == FileState::usable) {
        text_ = std::move(found.text);
    }
    writable_ = found.state == FileState::usable || (found.state == FileState::damaged && moveAside(file_));
}

fs::path UserDefaults::standardFile() { return LibraryURLs::getPreferencesFolderURL() / "defaults.ini"; }

std::optional<quint64> UserDefaults::number(const QString& key) const {
    bool reads = false;
    const quint64 value = text(key).toULongLong(&reads);
    return reads ? std::optional(value) : std::nullopt;
}

std::optional<bool> UserDefaults::boolean(const QString& key) const {
    const QString value = text(key);
    if (value == QStringLiteral("true") || value == QStringLiteral("false")) {
        return value == QStringLiteral("true");
    }
    bool reads = false;
    const qint64 number = value.toLongLong(&reads);
    return reads ? std::optional(number != 0) : std::nullopt;
}

void UserDefaults::setNumber(const QString& key, quint64 value) { write(key, QString::number(value)); }

void UserDefaults::setBoolean(const QString& key, bool value) {
    write(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void UserDefaults::increase(const QString& key) {
    const quint64 before = number(key).value_or(0);
    setNumber(key, before == std::numeric_limits<quint64>::max() ? before : before + 1);
}

QString UserDefaults::text(const QString& key) const {
    const auto name = nameInFile(key);
    if (const auto unsaved = unsaved_.find(name); unsaved != unsaved_.end()) {
        return QString::fromStdString(unsaved->second);
    }
    for (const char* place : {group, ""}) {
        if (const auto value = text_.value(place, name)) {
            return QString::fromStdString(*value);
        }
    }
    return {};
}

void UserDefaults::write(const QString& key, const QString& value) {
    unsaved_.insert_or_assign(nameInFile(key), value.toStdString());
    if (writable_) {
        reload();
    }
    if (!writable_) {
        return;
    }
    for (const auto& [name, unsaved] : unsaved_) {
        text_.setValue(group, name, unsaved);
    }
    if (save(file_, text_.text())) {
        unsaved_.clear();
    }
}

}  // namespace brimvault::platform
