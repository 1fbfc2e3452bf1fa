#include "ui/list/PngPicture.h"

#include <QtEndian>
#include <algorithm>
#include <array>

namespace brimvault::ui {

namespace {

constexpr QByteArrayView signature("\x89PNG\r\n\x1a\n");
constexpr QByteArrayView header("IHDR");
constexpr QByteArrayView end("IEND");
constexpr std::array<QByteArrayView, 5> needed = {header, "PLTE", "tRNS", "IDAT", end};
constexpr qsizetype word = 4;
constexpr qsizetype frame = 3 * word;  // of a chunk: its length, its kind, its checksum
constexpr quint32 headerLength = 13;

quint32 numberAt(QByteArrayView contents, qsizetype place) { return qFromBigEndian<quint32>(contents.data() + place); }

}  // namespace

QSize PngPicture::sizeOf(QByteArrayView contents) {
    const qsizetype first = signature.size();
    if (contents.size() < first + frame + headerLength || !contents.startsWith(signature) ||
        numberAt(contents, first) != headerLength || contents.sliced(first + word, word) != header) {
        return {};
    }
    const auto width = numberAt(contents, first + 2 * word);
    const auto height = numberAt(contents, first + 3 * word);
    constexpr quint32 maxInt = 0x7fffffff;
    return width > maxInt || height > maxInt ? QSize() : QSize(static_cast<int>(width), static_cast<int>(height));
}

QByteArray PngPicture::withoutMetadata(QByteArrayView contents) {
    QByteArray picture = signature.toByteArray();
    picture.reserve(contents.size());
    qsizetype place = signature.size();
    while (place + frame <= contents.size()) {
        const auto length = static_cast<qsizetype>(numberAt(contents, place));
        const auto kind = contents.sliced(place + word, word);
        if (length > contents.size() - place - frame) {
            break;
        }
        if (std::find(needed.begin(), needed.end(), kind) != needed.end()) {
            picture.append(contents.sliced(place, length + frame));
        }
        if (kind == end) {
            break;
        }
        place += length + frame;
    }
    return picture;
}

}  // namespace brimvault::ui
