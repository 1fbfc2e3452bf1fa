#include "ui/look/IconTheme.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "platform/formats/FileContents.h"
#include "platform/formats/SettingsText.h"

namespace brimvault::ui {

using platform::FileContents;

namespace {

constexpr std::size_t maxIndexBytes = 1024UL * 1024;  // large themes have some dozens of KiB
constexpr int maxDepth = 8;                           // of a chain of themes that inherit from each other
const QString fallbackTheme = QStringLiteral("hicolor");

const char* contextOf(IconTheme::Kind kind) {
    return kind == IconTheme::Kind::fileTypes ? "MimeTypes" : "Applications";
}

// How badly a folder of icons fits the wanted size; a picture that must be enlarged is always worse than any other.
int distance(int minSize, int maxSize, int pixels) {
    constexpr int enlarged = 10000;
    return maxSize < pixels ? enlarged + pixels - maxSize : std::max(0, minSize - pixels);
}

}  // namespace

QString IconTheme::fileOf(const QStringList& icons, int pixels) {
    if (name_.isEmpty()) {
        return {};
    }
    readOnce();
    for (const QString& icon : icons) {
        for (const auto& folders : themes_) {
            QString file = icon.isEmpty() ? QString() : find(folders, icon, pixels);
            if (!file.isEmpty()) {
                return file;
            }
        }
    }
    return {};
}

void IconTheme::readOnce() {
    if (!read_) {
        read_ = true;
        readTheme(name_, 0);
        readTheme(fallbackTheme, 0);
    }
}

// An index names the theme's folders wherever the theme lies: where applications add icons to it, there is no index.
void IconTheme::readTheme(const QString& name, int depth) {
    if (depth > maxDepth || seen_.contains(name)) {
        return;
    }
    seen_.append(name);
    std::vector<Folder> named;
    QStringList inherited;
    for (const QString& folder : folders_) {
        const QString list = folder + QLatin1Char('/') + name + QStringLiteral("/index.theme");
        if (const auto contents = FileContents::read(QFile::encodeName(list).toStdString(), maxIndexBytes)) {
            const platform::SettingsText index(*contents);
            const auto names = index.value("Icon Theme", "Inherits").value_or(std::string());
            inherited += QString::fromStdString(names).split(QLatin1Char(','), Qt::SkipEmptyParts);
            appendFolders(index, named);
        }
    }
    std::vector<Folder> found;
    for (const QString& folder : folders_) {
        for (const Folder& inTheme : named) {
            const QString path = folder + QLatin1Char('/') + name + QLatin1Char('/') + inTheme.path;
            if (QFileInfo(path).isDir()) {
                found.push_back({path, inTheme.minSize, inTheme.maxSize});
            }
        }
    }
    themes_.push_back(std::move(found));
    for (const QString& next : inherited) {
        readTheme(next.trimmed(), depth + 1);
    }
}

void IconTheme::appendFolders(const platform::SettingsText& index, std::vector<Folder>& named) const {
    for (const auto& [name, values] : index.groups()) {
        const QString path = QString::fromStdString(name);
        const auto value = [&, &given = values](const char* key) {
            const auto place = given.find(key);
            return place == given.end() ? QString() : QString::fromStdString(place->second);
        };
        const bool known =
            std::any_of(named.begin(), named.end(), [&](const Folder& folder) { return folder.path == path; });
        if (known || value("Context").compare(QLatin1String(contextOf(kind_)), Qt::CaseInsensitive) != 0) {
            continue;
        }
        const bool scalable = value("Type") == QLatin1String("Scalable");
        const int size = value("Size").toInt();
        const auto limit = [&](const char* key) {
            const int given = scalable ? value(key).toInt() : 0;
            return (given > 0 ? given : size) * std::max(1, value("Scale").toInt());
        };
        named.push_back({path, limit("MinSize"), limit("MaxSize")});
    }
}

QString IconTheme::find(std::vector<Folder> folders, const QString& icon, int pixels) {
    std::stable_sort(folders.begin(), folders.end(), [&](const Folder& left, const Folder& right) {
        return distance(left.minSize, left.maxSize, pixels) < distance(right.minSize, right.maxSize, pixels);
    });
    for (const Folder& folder : folders) {
        for (const char* extension : {".png", ".svg", ".xpm"}) {
            QString file = folder.path + QLatin1Char('/') + icon + QLatin1String(extension);
            if (QFileInfo(file).isFile()) {
                return file;
            }
        }
    }
    return {};
}

}  // namespace brimvault::ui
