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

QImage applicationIcon(const QByteArray& bundle, int pixels) {
    const auto contents = platform::ApplicationIcon::read(bundle.toStdString());
    return contents ? IconImage::ofContents(QByteArray::fromStdString(*contents), pixels) : QImage();
}

}  // namespace

// The cache of types needs no lock: RowIcons loads on one thread.
RowIcons::Load RowIcons::installed() {
    static std::once_flag limited;
    std::call_once(limited, IconImage::limitMemory);
    const auto types = std::make_shared<TypeIcons>(QIcon::themeName(), QIcon::themeSearchPaths());
    return [types](const RowPicture& picture, int pixels) {
        try {
            return picture.better == RowPicture::Better::ofApplication ? applicationIcon(picture.source, pixels)
                                                                       : types->of(picture.source, pixels);
        } catch (const std::exception&) {
            return QImage();  // out of memory
        }
    };
}

}  // namespace brimvault::ui
