#include "ui/list/IconFile.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <optional>

#include "ui/list/PngPicture.h"
#include "ui/list/TiffPicture.h"

namespace brimvault::ui {

namespace {

using Form = IconPicture::Form;
using Pictures = std::vector<IconPicture>;

constexpr qsizetype maxElements = 256;  // an icns file has about a dozen pictures and a few other elements
constexpr qsizetype elementHead = 8;    // of an element of an icns file: its kind and its length
constexpr QByteArrayView elementsKind("icns");

// The old icns elements hold run-length encoded colours, with the mask in a second element; newer ones are PNG files.
struct ElementKind {
    QByteArrayView colours;
    QByteArrayView mask;
    int side;
};
constexpr std::array<ElementKind, 4> elementKinds = {
    {{"is32", "s8mk", 16}, {"il32", "l8mk", 32}, {"ih32", "h8mk", 48}, {"it32", "t8mk", 128}}};

// An ico file starts with a directory of its bitmaps.
constexpr QByteArrayView bitmapsStart("\0\0\1\0", 4);
constexpr qsizetype bitmapsHead = 6;
constexpr qsizetype bitmapsEntry = 16;
constexpr qsizetype bitmapHead = 40;

int little16(QByteArrayView contents, qsizetype place) { return qFromLittleEndian<quint16>(contents.data() + place); }
qint64 little32(QByteArrayView contents, qsizetype place) { return qFromLittleEndian<qint32>(contents.data() + place); }

bool isSideOfIcon(qint64 side) { return side > 0 && side <= IconFile::maxSide; }

// Empty for sizes that no icon has.
QSize iconSize(qint64 width, qint64 height) {
    return isSideOfIcon(width) && isSideOfIcon(height) ? QSize(static_cast<int>(width), static_cast<int>(height))
                                                       : QSize();
}

void append(Pictures& pictures, Form form, const QSize& size, QByteArrayView contents) {
    if (!iconSize(size.width(), size.height()).isEmpty()) {
        pictures.push_back({form, std::max(size.width(), size.height()), contents, {}});
    }
}

QByteArrayView elementOf(const std::vector<QByteArrayView>& elements, QByteArrayView kind) {
    const auto found =
        std::find_if(elements.begin(), elements.end(), [&](const auto& element) { return element.startsWith(kind); });
    return found == elements.end() ? QByteArrayView() : *found;
}

// Empty if there are too many.
std::vector<QByteArrayView> elementsIn(QByteArrayView contents) {
    std::vector<QByteArrayView> elements;
    for (qsizetype place = elementHead; place + elementHead <= contents.size();) {
        const qsizetype length = qFromBigEndian<quint32>(contents.data() + place + 4);
        if (length < elementHead || length > contents.size() - place) {
            break;
        }
        elements.push_back(contents.sliced(place, length));
        place += length;
    }
    return elements.size() > maxElements ? std::vector<QByteArrayView>() : elements;
}

Pictures inElements(QByteArrayView contents) {
    Pictures pictures;
    const auto elements = elementsIn(contents);
    for (const auto& element : elements) {
        const auto file = element.sliced(elementHead);
        append(pictures, Form::png, PngPicture::sizeOf(file), file);
    }
    for (const auto& kind : elementKinds) {
        const auto colours = elementOf(elements, kind.colours);
        if (!colours.isEmpty() && PngPicture::sizeOf(colours.sliced(elementHead)).isEmpty()) {
            pictures.push_back({Form::iconElement, kind.side, colours, elementOf(elements, kind.mask)});
        }
    }
    return pictures;
}

// A bitmap of an ico file states twice its height, since the mask follows the colours.
QSize sizeOfBitmap(QByteArrayView bitmap) {
    if (bitmap.size() < bitmapHead || little32(bitmap, 0) != bitmapHead) {
        return {};
    }
    return iconSize(little32(bitmap, 4), little32(bitmap, 8) / 2);
}

Pictures inBitmaps(QByteArrayView contents) {
    Pictures pictures;
    const qsizetype listed = little16(contents, 4);
    for (qsizetype index = 0; index < std::min(listed, maxElements); ++index) {
        const qsizetype entry = bitmapsHead + index * bitmapsEntry;
        if (entry + bitmapsEntry > contents.size()) {
            break;
        }
        const auto length = little32(contents, entry + 8);
        const auto place = little32(contents, entry + 12);
        if (length <= 0 || place < 0 || place > contents.size() || length > contents.size() - place) {
            continue;
        }
        const auto file = contents.sliced(place, length);
        append(pictures, Form::png, PngPicture::sizeOf(file), file);
        append(pictures, Form::iconBitmap, sizeOfBitmap(file), file);
    }
    return pictures;
}

QSize sizeOfGif(QByteArrayView contents) { return {little16(contents, 6), little16(contents, 8)}; }

QSize sizeOfBmp(QByteArrayView contents) { return iconSize(little32(contents, 18), std::abs(little32(contents, 22))); }

// An ico file with this bitmap alone. Sides of 0 in its directory mean that the bitmap states them.
QByteArray asOnlyBitmap(QByteArrayView bitmap) {
    constexpr qint32 placeOfOnly = bitmapsHead + bitmapsEntry;
    QByteArray file = bitmapsStart.toByteArray();
    file.append(QByteArrayView("\1\0\0\0\0\0\1\0", 8)).append(bitmap.sliced(14, 2));  // one; sides, planes, bits
    for (const auto number : {static_cast<qint32>(bitmap.size()), placeOfOnly}) {
        const qint32 bytes = qToLittleEndian(number);
        file.append(reinterpret_cast<const char*>(&bytes), sizeof bytes);
    }
    return file.append(bitmap);
}

QByteArray asOnlyElement(QByteArrayView colours, QByteArrayView mask) {
    const auto length = qToBigEndian(static_cast<quint32>(elementHead + colours.size() + mask.size()));
    QByteArray file = elementsKind.toByteArray();
    return file.append(reinterpret_cast<const char*>(&length), sizeof length).append(colours).append(mask);
}

}  // namespace

Pictures IconFile::pictures(QByteArrayView contents) {
    constexpr qsizetype minBytes = 26;  // the shortest header of these formats
    Pictures found;
    if (contents.size() < minBytes || contents.size() > maxBytes) {
        return found;
    }
    if (contents.startsWith(elementsKind)) {
        return inElements(contents);
    }
    if (contents.startsWith(bitmapsStart)) {
        return inBitmaps(contents);
    }
    append(found, Form::png, PngPicture::sizeOf(contents), contents);
    append(found, Form::tiff, TiffPicture::sizeOf(contents), contents);
    if (contents.startsWith("GIF8")) {
        append(found, Form::gif, sizeOfGif(contents), contents);
    } else if (contents.startsWith("BM")) {
        append(found, Form::bmp, sizeOfBmp(contents), contents);
    } else if (contents.startsWith("/* XPM")) {
        found.push_back({Form::xpm, 0, contents, {}});
    }
    return found;
}

QByteArray IconPicture::reader() const {
    switch (form) {
        case Form::png:
            return "png";
        case Form::tiff:
            return "tiff";
        case Form::gif:
            return "gif";
        case Form::bmp:
            return "bmp";
        case Form::xpm:
            return "xpm";
        case Form::iconElement:
            return "icns";
        case Form::iconBitmap:
            break;
    }
    return "ico";
}

QByteArray IconPicture::contents() const {
    switch (form) {
        case Form::png:
            return PngPicture::withoutMetadata(picture);
        case Form::tiff:
            return TiffPicture::withoutMetadata(picture);
        case Form::iconElement:
            return asOnlyElement(picture, mask);
        case Form::iconBitmap:
            return asOnlyBitmap(picture);
        case Form::gif:
        case Form::bmp:
        case Form::xpm:
            break;
    }
    return picture.toByteArray();
}

}  // namespace brimvault::ui
