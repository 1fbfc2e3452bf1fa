#include "ui/list/TiffPicture.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <optional>

namespace brimvault::ui {

namespace {

constexpr QByteArrayView littleEndian("II\x2a\0", 4);
constexpr QByteArrayView bigEndian("MM\0\x2a", 4);
constexpr qsizetype entryLength = 12;
constexpr qsizetype headerLength = 8;

enum Tag : quint16 {
    width = 256,
    height = 257,
    bitsPerSample = 258,
    compression = 259,
    samplesPerPixel = 277,
};
// The fields that a decoder needs: those above, and the ones for the meaning of samples and the places of strips.
constexpr std::array<quint16, 15> needed = {width,           height, bitsPerSample, compression, 262, 266, 273, 274,
                                            samplesPerPixel, 278,    279,           284,         317, 320, 338};
constexpr std::array<quint32, 5> compressions = {1, 5, 8, 32773, 32946};  // none, LZW, Deflate, PackBits, old Deflate
constexpr quint32 maxBits = 16;
constexpr quint32 maxSamples = 5;
constexpr quint32 maxSide = 0x7fff;

/// The fields of the first picture in a file.
class Directory {
public:
    explicit Directory(QByteArrayView contents) : contents_(contents), little_(contents.startsWith(littleEndian)) {
        constexpr qsizetype placeOfDirectory = 4;
        const auto at = static_cast<qsizetype>(TiffPicture::isTiff(contents) ? number32(placeOfDirectory) : 0);
        if (at < headerLength || at + 2 > contents.size()) {
            return;
        }
        const qsizetype entries = number16(at);
        if (at + 2 + entries * entryLength + placeOfDirectory <= contents.size()) {
            start_ = at;
            count_ = entries;
        }
    }

    [[nodiscard]] qsizetype start() const { return start_; }
    [[nodiscard]] qsizetype count() const { return count_; }
    [[nodiscard]] qsizetype entry(qsizetype index) const { return start_ + 2 + index * entryLength; }
    [[nodiscard]] quint16 tag(qsizetype index) const { return number16(entry(index)); }

    /// The first value of a field; none if the field is missing or is no number.
    [[nodiscard]] std::optional<quint32> value(quint16 wanted) const {
        for (qsizetype index = 0; index < count_; ++index) {
            if (tag(index) == wanted) {
                return valueOf(entry(index));
            }
        }
        return std::nullopt;
    }

    void write16(QByteArray& contents, qsizetype place, quint16 number) const {
        const quint16 bytes = little_ ? qToLittleEndian(number) : qToBigEndian(number);
        contents.replace(place, 2, reinterpret_cast<const char*>(&bytes), 2);
    }

private:
    [[nodiscard]] std::optional<quint32> valueOf(qsizetype entry) const {
        constexpr quint16 shortKind = 3;
        constexpr quint16 longKind = 4;
        const quint16 kind = number16(entry + 2);
        const quint32 count = number32(entry + 4);
        const quint32 inEntry = kind == shortKind ? 2 : 1;
        if ((kind != shortKind && kind != longKind) || count == 0) {
            return std::nullopt;
        }
        const qsizetype place = count <= inEntry ? entry + 8 : static_cast<qsizetype>(number32(entry + 8));
        if (place + 4 > contents_.size()) {
            return std::nullopt;
        }
        return kind == shortKind ? number16(place) : number32(place);
    }
    [[nodiscard]] quint16 number16(qsizetype place) const {
        const char* bytes = contents_.data() + place;
        return little_ ? qFromLittleEndian<quint16>(bytes) : qFromBigEndian<quint16>(bytes);
    }
    [[nodiscard]] quint32 number32(qsizetype place) const {
        const char* bytes = contents_.data() + place;
        return little_ ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
    }

    QByteArrayView contents_;
    bool little_;
    qsizetype start_ = 0;
    qsizetype count_ = 0;
};

}  // namespace

bool TiffPicture::isTiff(QByteArrayView contents) {
    return contents.size() >= headerLength && (contents.startsWith(littleEndian) || contents.startsWith(bigEndian));
}

QSize TiffPicture::sizeOf(QByteArrayView contents) {
    const Directory fields(contents);
    const auto across = fields.value(width).value_or(0);
    const auto down = fields.value(height).value_or(0);
    const auto used = fields.value(compression).value_or(compressions.front());
    const bool supported = fields.value(bitsPerSample).value_or(1) <= maxBits &&
                           fields.value(samplesPerPixel).value_or(1) <= maxSamples &&
                           std::find(compressions.begin(), compressions.end(), used) != compressions.end();
    return !supported || across > maxSide || down > maxSide ? QSize()
                                                            : QSize(static_cast<int>(across), static_cast<int>(down));
}

// Only the entries of the directory move: they refer to their values by absolute places in the file.
QByteArray TiffPicture::withoutMetadata(QByteArrayView contents) {
    const Directory fields(contents);
    QByteArray picture = contents.toByteArray();
    QByteArray kept;
    for (qsizetype index = 0; index < fields.count(); ++index) {
        if (std::find(needed.begin(), needed.end(), fields.tag(index)) != needed.end()) {
            kept.append(contents.sliced(fields.entry(index), entryLength));
        }
    }
    const qsizetype count = kept.size() / entryLength;
    kept.append(4, '\0');  // no further picture
    picture.replace(fields.entry(0), kept.size(), kept);
    fields.write16(picture, fields.start(), static_cast<quint16>(count));
    return picture;
}

}  // namespace brimvault::ui
