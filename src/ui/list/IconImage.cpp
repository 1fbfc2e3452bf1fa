#include "ui/list/IconImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QRegularExpression>
#include <algorithm>

#include "platform/formats/FileContents.h"

namespace brimvault::ui {

namespace {

constexpr int maxMemory = 40;           // MiB; room for a picture of the maximum size
constexpr std::size_t maxAttempts = 4;  // pictures of one file; some are in formats that Qt cannot read

// The best fit first: the smallest one that is large enough, else the largest.
void sortByUse(std::vector<IconPicture>& pictures, int pixels) {
    const auto rank = [pixels](const IconPicture& picture) {
        return picture.side < pixels ? 2 * IconFile::maxSide - picture.side : picture.side;
    };
    std::stable_sort(pictures.begin(), pictures.end(),
                     [&](const auto& left, const auto& right) { return rank(left) < rank(right); });
}

QImage fitted(const QImage& image, int pixels) {
    return image.isNull() ? image : image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

bool isTooLarge(const QImageReader& reader) {
    const QSize size = reader.size();
    return size.width() > IconFile::maxSide || size.height() > IconFile::maxSide;
}

QImage decoded(const IconPicture& picture) {
    QByteArray contents = picture.contents();
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, picture.reader());
    reader.setAutoDetectImageFormat(false);  // or Qt would try all plug-ins
    return isTooLarge(reader) ? QImage() : reader.read();
}

// An SVG file can refer to other files, define entities that expand exponentially, and repeat parts with nested <use>.
// Icon themes hardly use any of this.
bool isPlainDrawing(const QByteArray& contents) {
    if (!contents.trimmed().startsWith('<') || contents.contains('\0')) {
        return false;
    }
    constexpr qsizetype maxRepeated = 16;
    static const QRegularExpression refused(QStringLiteral("<!ENTITY|<([\\w.-]+:)?(image|foreignObject)\\b"));
    static const QRegularExpression repeated(QStringLiteral("<([\\w.-]+:)?use\\b"));
    const QString text = QString::fromUtf8(contents);
    return !text.contains(refused) && text.count(repeated) <= maxRepeated;
}

QImage ofDrawing(QByteArray contents, int pixels) {
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "svg");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    if (size.isEmpty()) {
        return {};
    }
    reader.setScaledSize(size.scaled(pixels, pixels, Qt::KeepAspectRatio));
    return fitted(reader.read(), pixels);
}

}  // namespace

void IconImage::limitMemory() { QImageReader::setAllocationLimit(maxMemory); }

QImage IconImage::ofContents(const QByteArray& contents, int pixels) {
    auto pictures = IconFile::pictures(contents);
    sortByUse(pictures, pixels);
    for (std::size_t attempt = 0; attempt < std::min(pictures.size(), maxAttempts); ++attempt) {
        const QImage image = decoded(pictures[attempt]);
        if (!image.isNull()) {
            return fitted(image, pixels);
        }
    }
    return {};
}

QImage IconImage::ofDesktopFile(const QString& file, int pixels) {
    const auto read =
        platform::FileContents::read(std::filesystem::path(file.toStdString()), std::size_t{IconFile::maxBytes});
    const auto contents = QByteArray::fromStdString(read.value_or(std::string()));
    return isPlainDrawing(contents) ? ofDrawing(contents, pixels) : ofContents(contents, pixels);
}

}  // namespace brimvault::ui
