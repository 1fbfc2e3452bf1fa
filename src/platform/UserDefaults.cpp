#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <algorithm>
#include <limits>

#include "platform/LibraryURLs.h"

namespace brimvault::platform {

namespace {

enum class FileState { usable, damaged, unreadable };

// Settings are plain text. What holds anything else would be read as if it were, and be lost with the next change.
FileState stateOf(const QString& name) {
    const QFileInfo info(name);
    if (!info.exists() && !info.isSymLink()) {
        return FileState::usable;
    }
    QFile file(name);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {  // opening a pipe would wait for whoever writes to it
        return FileState::unreadable;
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(file.readAll());
    const bool plain = std::none_of(text.begin(), text.end(), [](QChar character) {
        return character.category() == QChar::Other_Control && !character.isSpace();
    });
    return plain && !decoder.hasError() ? FileState::usable : FileState::damaged;
}

std::unique_ptr<QSettings> openSettings(const QString& file) {
    auto settings = std::make_unique<QSettings>(file, QSettings::IniFormat);
    (void)settings->allKeys();  // the lines are read on first use only, and the status tells of them then
    return settings;
}

bool moveAside(const QString& file) {
    const QString aside = file + QStringLiteral(".damaged-") +
                          QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-hhmmss-zzz"));
    return QFile::rename(file, aside);
}

}  // namespace

UserDefaults::UserDefaults(const std::filesystem::path& file) {
    const QString name = QFile::decodeName(file.c_str());
    const FileState state = stateOf(name);
    if (state == FileState::unreadable) {
        writable_ = false;
        return;
    }
    settings_ = openSettings(name);
    if (state == FileState::damaged || settings_->status() == QSettings::FormatError) {
        settings_.reset();
        writable_ = moveAside(name);
        settings_ = openSettings(name);
    }
}

std::filesystem::path UserDefaults::standardFile() { return LibraryURLs::getPreferencesFolderURL() / "defaults.ini"; }

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
    const auto unsaved = unsaved_.constFind(key);
    if (unsaved != unsaved_.constEnd()) {
        return *unsaved;
    }
    return settings_ ? settings_->value(key).toString() : QString();
}

void UserDefaults::write(const QString& key, const QString& value) {
    if (!writable_) {
        unsaved_.insert(key, value);
        return;
    }
    settings_->setValue(key, value);
    settings_->sync();
}

}  // namespace brimvault::platform
