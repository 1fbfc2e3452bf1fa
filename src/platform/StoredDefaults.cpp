#include "platform/StoredDefaults.h"

#include <QStringDecoder>
#include <algorithm>
#include <system_error>

#include "platform/LibraryURLs.h"
#include "platform/formats/FileContents.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxFileBytes = 1024UL * 1024;  // the program itself writes some dozens of lines

// Settings are plain text. Anything else could be parsed in part, and the rest be lost with the next change.
bool isPlainText(const std::string& contents) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(QByteArrayView(contents));
    return !decoder.hasError() && std::none_of(text.begin(), text.end(), [](QChar character) {
        return character.category() == QChar::Other_Control && !character.isSpace();
    });
}

}  // namespace

StoredDefaults::FileState StoredDefaults::load(const fs::path& file) {
    const auto contents = FileContents::read(file, maxFileBytes);
    if (!contents) {
        std::error_code ignored;
        const bool isMissing = fs::symlink_status(file, ignored).type() == fs::file_type::not_found;
        if (isMissing) {
            text_ = {};
        }
        return isMissing ? FileState::usable : FileState::unreadable;
    }
    SettingsText text(*contents);
    const bool isGood = text.isUnderstood() && isPlainText(*contents);
    if (isGood) {
        text_ = std::move(text);
    }
    return isGood ? FileState::usable : FileState::damaged;
}

fs::path StoredDefaults::standardFile() { return LibraryURLs::getPreferencesFolderURL() / "defaults.ini"; }

std::optional<quint64> StoredDefaults::number(const QString& key) const {
    bool reads = false;
    const quint64 value = text(key).toULongLong(&reads);
    return reads ? std::optional(value) : std::nullopt;
}

std::optional<bool> StoredDefaults::boolean(const QString& key) const {
    const QString value = text(key);
    if (value == QStringLiteral("true") || value == QStringLiteral("false")) {
        return value == QStringLiteral("true");
    }
    bool reads = false;
    const qint64 number = value.toLongLong(&reads);
    return reads ? std::optional(number != 0) : std::nullopt;
}

QString StoredDefaults::text(const QString& key) const {
    const auto name = nameInFile(key);
    for (const char* place : {group, ""}) {
        if (const auto value = text_.value(place, name)) {
            return QString::fromStdString(*value);
        }
    }
    return {};
}

// Escapes all but letters, digits, "_", "-" and "." by their codes, in the format that existing files have.
std::string StoredDefaults::nameInFile(const QString& key) {
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

}  // namespace brimvault::platform
