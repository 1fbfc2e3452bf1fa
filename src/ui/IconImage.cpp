#include "ui/IconImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>
#include <algorithm>
#include <vector>

namespace brimvault::ui {

namespace {

constexpr int mostMemory = 80;       // MiB; what a picture of the largest size takes, and a little
constexpr int mostPictures = 64;     // an icon file has one for each size, about a dozen
constexpr int mostElements = 256;    // and a few more that are none
constexpr int mostAttempts = 4;      // to read one of them: some are in forms of older days
constexpr int unknownSide = 100000;  // comes last

// Drawings in the form of SVG are not among them: what others wrote as such can take any time.
bool isIconFormat(const QByteArray& format) {
    static const QList<QByteArray> formats = {"icns", "tiff", "tif", "png", "ico", "xpm", "gif", "jpeg", "jpg", "bmp"};
    return formats.contains(format);
}

// An icon file (icns) is a row of elements, each with four letters for its kind and four bytes for its length. What
// goes over them for us takes the square of their number.
bool hasFewElements(const QByteArray& contents) {
    constexpr qsizetype head = 8;
    int count = 0;
    for (qsizetype place = head; place + head <= contents.size() && count <= mostElements; ++count) {
        const auto length = qFromBigEndian<quint32>(contents.constData() + place + 4);
        place += std::max<qsizetype>(head, length);
    }
    return count <= mostElements;
}

// The sides of the pictures in an icon file by the names of their kinds, where the reader does not tell.
int sideOfKind(const QByteArray& kind) {
    static const QHash<QByteArray, int> sides = {{"is32", 16},  {"icp4", 16},  {"il32", 32},  {"icp5", 32},
                                                 {"ic11", 32},  {"ih32", 48},  {"icp6", 64},  {"ic12", 64},
                                                 {"it32", 128}, {"ic07", 128}, {"ic08", 256}, {"ic13", 256},
                                                 {"ic09", 512}, {"ic14", 512}, {"ic10", 1024}};
    return sides.value(kind, unknownSide);
}

int sideOf(const QImageReader& reader) {
    const QSize size = reader.size();
    return size.isValid() ? std::max(size.width(), size.height()) : sideOfKind(reader.subType());
}

// The places of the pictures, that which serves best first: the smallest that is large enough, else the largest.
std::vector<int> byUse(QImageReader& reader, int pixels) {
    const bool several = reader.format() == "icns" || reader.format() == "ico";  // counting others' may take any time
    const int count = several ? std::clamp(reader.imageCount(), 1, mostPictures) : 1;
    std::vector<std::pair<int, int>> sides;
    for (int place = 0; place < count; ++place) {
        const bool there = count == 1 || reader.jumpToImage(place);
        const int side = there ? sideOf(reader) : unknownSide;
        sides.emplace_back(side < pixels ? unknownSide + pixels - side : side, place);
    }
    std::sort(sides.begin(), sides.end());
    std::vector<int> places;
    std::transform(sides.begin(), sides.end(), std::back_inserter(places),
                   [](const auto& side) { return side.second; });
    return places;
}

QImage fitted(const QImage& image, int pixels) {
    return image.isNull() ? image : image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

bool isTooLarge(const QImageReader& reader) {
    const QSize size = reader.size();
    return size.width() > IconImage::largestSide || size.height() > IconImage::largestSide;
}

}  // namespace

void IconImage::limitMemory() { QImageReader::setAllocationLimit(mostMemory); }

QImage IconImage::ofContents(QByteArray contents, int pixels) {
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!isIconFormat(reader.format()) || (reader.format() == "icns" && !hasFewElements(contents))) {
        return {};
    }
    const auto places = byUse(reader, pixels);
    const auto attempts = std::min<std::size_t>(places.size(), mostAttempts);
    for (std::size_t attempt = 0; attempt < attempts; ++attempt) {
        const bool there = places.size() == 1 || reader.jumpToImage(places[attempt]);
        const QImage image = there && !isTooLarge(reader) ? reader.read() : QImage();
        if (!image.isNull()) {
            return fitted(image, pixels);
        }
    }
    return {};
}

QImage IconImage::ofDesktopFile(const QString& file, int pixels) {
    QImageReader reader(file);
    const QSize size = reader.size();
    if (reader.format().startsWith("svg") && size.isValid()) {
        reader.setScaledSize(size.scaled(pixels, pixels, Qt::KeepAspectRatio));
    }
    return isTooLarge(reader) ? QImage() : fitted(reader.read(), pixels);
}

}  // namespace brimvault::ui
