#include "ui/list/IconImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QRegularExpression>
#include <algorithm>

#include "platform/formats/FileContents.h"

namespace brimvault::ui {

namespace {

constexpr int mostMemory = 40;           // MiB; what a picture of the largest size takes, and a little
constexpr std::size_t mostAttempts = 4;  // to read one of several: some are in forms of older days

// That which serves best first: the smallest that is large enough, else the largest.
void sortByUse(std::vector<IconPicture>& pictures, int pixels) {
    const auto rank = [pixels](const IconPicture& picture) {
        return picture.side < pixels ? 2 * IconFile::largestSide - picture.side : picture.side;
    };
    std::stable_sort(pictures.begin(), pictures.end(),
                     [&](const auto& left, const auto& right) { return rank(left) < rank(right); });
}

QImage fitted(const QImage& image, int pixels) {
    return image.isNull() ? image : image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

bool isTooLarge(const QImageReader& reader) {
    const QSize size = reader.size();
    return size.width() > IconFile::largestSide || size.height() > IconFile::largestSide;
}

QImage decoded(const IconPicture& picture) {
    QByteArray contents = picture.contents();
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, picture.reader());
    reader.setAutoDetectImageFormat(false);  // no other reader is asked whether it knows it
    return isTooLarge(reader) ? QImage() : reader.read();
}

// A drawing can name other files, have parts defined as texts that grow, and repeat its parts again and again. Themes
// of icons do hardly any of this.
bool isPlainDrawing(const QByteArray& contents) {
    if (!contents.trimmed().startsWith('<') || contents.contains('\0')) {
        return false;
    }
    constexpr qsizetype mostRepeated = 16;
    static const QRegularExpression refused(QStringLiteral("<!ENTITY|<([\\w.-]+:)?(image|foreignObject)\\b"));
    static const QRegularExpression repeated(QStringLiteral("<([\\w.-]+:)?use\\b"));
    const QString text = QString::fromUtf8(contents);
    return !text.contains(refused) && text.count(repeated) <= mostRepeated;
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

void IconImage::limitMemory() { QImageReader::setAllocationLimit(mostMemory); }

QImage IconImage::ofContents(const QByteArray& contents, int pixels) {
    auto pictures = IconFile::pictures(contents);
    sortByUse(pictures, pixels);
    for (std::size_t attempt = 0; attempt < std::min(pictures.size(), mostAttempts); ++attempt) {
        const QImage image = decoded(pictures[attempt]);
        if (!image.isNull()) {
            return fitted(image, pixels);
        }
    }
    return {};
}

QImage IconImage::ofDesktopFile(const QString& file, int pixels) {
    const auto read =
        platform::FileContents::read(std::filesystem::path(file.toStdString()), std::size_t{IconFile::mostBytes});
    const auto contents = QByteArray::fromStdString(read.value_or(std::string()));
    return isPlainDrawing(contents) ? ofDrawing(contents, pixels) : ofContents(contents, pixels);
}

}  // namespace brimvault::ui
