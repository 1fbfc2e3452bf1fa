#include <QIcon>
#include <QMimeDatabase>
#include <exception>
#include <memory>
#include <mutex>

#include "platform/ApplicationIcon.h"
#include "ui/IconImage.h"
#include "ui/IconTheme.h"
#include "ui/RowIcons.h"

namespace brimvault::ui {

namespace {

// The types of files are few: the icon of each is looked for once.
class TypeIcons {
public:
    TypeIcons(const QString& theme, const QStringList& folders) : theme_(theme, folders) {}

    QImage of(const QByteArray& fileName, int pixels) {
        const auto type =
            QMimeDatabase().mimeTypeForFile(QString::fromUtf8(fileName), QMimeDatabase::MatchExtension);  // by its name
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
    QHash<std::pair<QString, int>, QImage> known_;
};

QImage applicationIcon(const QByteArray& bundle, int pixels) {
    const auto contents = platform::ApplicationIcon::read(bundle.toStdString());
    return contents ? IconImage::ofContents(QByteArray::fromStdString(*contents), pixels) : QImage();
}

}  // namespace

// What it keeps is used by one thread, that of the icons.
RowIcons::Load RowIcons::installed() {
    static std::once_flag limited;
    std::call_once(limited, IconImage::limitMemory);
    const auto types = std::make_shared<TypeIcons>(QIcon::themeName(), QIcon::themeSearchPaths());
    return [types](const RowPicture& picture, int pixels) {
        try {
            return picture.better == RowPicture::Better::ofApplication ? applicationIcon(picture.source, pixels)
                                                                       : types->of(picture.source, pixels);
        } catch (const std::exception&) {
            return QImage();  // for want of memory
        }
    };
}

}  // namespace brimvault::ui
