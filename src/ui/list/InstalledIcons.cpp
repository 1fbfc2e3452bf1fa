#include <QDir>
#include <QIcon>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <algorithm>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/ApplicationIcon.h"
#include "platform/DesktopEntries.h"
#include "platform/formats/FileContents.h"
#include "ui/list/IconImage.h"
#include "ui/list/RowIcons.h"
#include "ui/look/IconTheme.h"

namespace brimvault::ui {

namespace {

// QMimeDatabase reads files of the user's on its own, and would block for ever if one of them were a pipe or hung on a
// dead volume.
bool isTypeDatabaseHarmless() {
    constexpr std::size_t maxPart = 64UL * 1024 * 1024;
    const auto isHarmless = [](const QString& file) {
        return platform::FileContents::isHarmless(QFile::encodeName(file).toStdString(), maxPart);
    };
    const auto folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    return std::all_of(folders.begin(), folders.end(), [&](const QString& folder) {
        const auto packages = QDir(folder + QStringLiteral("/mime/packages"))
                                  .entryInfoList({QStringLiteral("*.xml")}, QDir::AllEntries | QDir::System);
        return isHarmless(folder + QStringLiteral("/mime/mime.cache")) &&
               std::all_of(packages.begin(), packages.end(),
                           [&](const auto& file) { return isHarmless(file.filePath()); });
    });
}

// Caches one icon for each file type.
class TypeIcons {
public:
    TypeIcons(const QString& theme, const QStringList& folders) : theme_(theme, folders) {}

    QImage of(const QByteArray& fileName, int pixels) {
        if (!harmless_) {
            harmless_ = isTypeDatabaseHarmless();
        }
        if (!*harmless_) {
            return {};
        }
        const auto type = QMimeDatabase().mimeTypeForFile(QString::fromUtf8(fileName), QMimeDatabase::MatchExtension);
        if (type.isDefault()) {
            return {};
        }
        const auto key = std::pair(type.name(), pixels);
        auto known = known_.constFind(key);
        if (known == known_.constEnd()) {
            const QString file = theme_.fileOf({type.iconName(), type.genericIconName()}, pixels);
            known = known_.insert(key, file.isEmpty() ? QImage() : IconImage::ofDesktopFile(file, pixels));
        }
        return *known;
    }

private:
    IconTheme theme_;
    std::optional<bool> harmless_;  ///< checked once, at the first call
    QHash<std::pair<QString, int>, QImage> known_;
};

// The icons of installed applications, by the identifiers of their desktop entries.
class EntryIcons {
public:
    /// The folders hold themes.
    EntryIcons(const QString& theme, QStringList folders) : theme_(theme), folders_(std::move(folders)) {}

    QImage of(const QByteArray& identifier, int pixels) {
        if (!installed_) {
            installed_ = std::make_unique<Installed>(theme_, folders_);
        }
        const auto entry = installed_->entries.find(identifier.toStdString());
        const QString file = entry ? installed_->fileOf(QString::fromStdString(entry->icon), pixels) : QString();
        return file.isEmpty() ? QImage() : IconImage::ofDesktopFile(file, pixels);
    }

private:
    // Made on the icons' thread, since where entries are is asked of the disk.
    struct Installed {
        Installed(const QString& theme, const QStringList& folders)
            : data(platform::DesktopEntries::dataFolders()),
              entries(data),
              icons(theme.isEmpty() ? QStringLiteral("hicolor") : theme, folders + dataFoldersNamed("icons"),
                    IconTheme::Kind::applications) {}

        QString fileOf(const QString& icon, int pixels) {
            const QString themed =
                icon.startsWith(QLatin1Char('/')) || icon.isEmpty() ? icon : icons.fileOf({icon}, pixels);
            return themed.isEmpty() && !icon.isEmpty() ? unthemed(icon) : themed;
        }
        QString unthemed(const QString& icon) const {
            for (const QString& folder : dataFoldersNamed("pixmaps")) {
                for (const char* extension : {".png", ".svg", ".xpm"}) {
                    QString file = folder + QLatin1Char('/') + icon + QLatin1String(extension);
                    if (QFileInfo(file).isFile()) {
                        return file;
                    }
                }
            }
            return {};
        }
        QStringList dataFoldersNamed(const char* name) const {
            QStringList named;
            for (const auto& folder : data) {
                named.append(QFile::decodeName((folder / name).c_str()));
            }
            return named;
        }

        const std::vector<std::filesystem::path> data;
        const platform::DesktopEntries entries;
        IconTheme icons;
    };

    const QString theme_;
    const QStringList folders_;
    std::unique_ptr<Installed> installed_;
};

QImage applicationIcon(const QByteArray& bundle, int pixels) {
    const auto contents = platform::ApplicationIcon::read(bundle.toStdString());
    return contents ? IconImage::ofContents(QByteArray::fromStdString(*contents), pixels) : QImage();
}

}  // namespace

// The caches need no lock: RowIcons loads on one thread.
RowIcons::Load RowIcons::installed() {
    static std::once_flag limited;
    std::call_once(limited, IconImage::limitMemory);
    const auto types = std::make_shared<TypeIcons>(QIcon::themeName(), QIcon::themeSearchPaths());
    const auto entries = std::make_shared<EntryIcons>(QIcon::themeName(), QIcon::themeSearchPaths());
    return [types, entries](const RowPicture& picture, int pixels) {
        try {
            switch (picture.better) {
                case RowPicture::Better::none:
                    return QImage();
                case RowPicture::Better::ofApplication:
                    return applicationIcon(picture.source, pixels);
                case RowPicture::Better::ofDesktopEntry:
                    return entries->of(picture.source, pixels);
                case RowPicture::Better::ofFileType:
                    return types->of(picture.source, pixels);
            }
            return QImage();
        } catch (const std::exception&) {
            return QImage();  // out of memory
        }
    };
}

}  // namespace brimvault::ui
