#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <limits>
#include <system_error>

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

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

}  // namespace

UserDefaults::UserDefaults(fs::path file) : file_(std::move(file)) { reload(); }

// Reads the file again, so that changes of another process are kept and damage is noticed.
void UserDefaults::reload() {
    const auto found = load(file_);
    writable_ = found == FileState::usable || (found == FileState::damaged && moveAside(file_));
}

void UserDefaults::setNumber(const QString& key, quint64 value) { write(key, QString::number(value)); }

void UserDefaults::setBoolean(const QString& key, bool value) {
    write(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void UserDefaults::increase(const QString& key) {
    const quint64 before = number(key).value_or(0);
    setNumber(key, before == std::numeric_limits<quint64>::max() ? before : before + 1);
}

void UserDefaults::write(const QString& key, const QString& value) {
    unsaved_.insert_or_assign(nameInFile(key), value.toStdString());
    if (writable_) {
        reload();
    }
    for (const auto& [name, unsaved] : unsaved_) {
        values().setValue(group, name, unsaved);
    }
    if (writable_ && save(file_, values().text())) {
        unsaved_.clear();
    }
}

}  // namespace brimvault::platform
