#pragma once

#include <QByteArray>
#include <QSize>

namespace brimvault::ui {

/// A picture of others in the form of TIFF, looked at without being decoded. Any thread.
class TiffPicture {
public:
    [[nodiscard]] static bool isOne(QByteArrayView contents);
    /// Pixels of the first picture; empty where it is none, or is packed in a way that no icon is: as a photograph, or
    /// in tiles, which may be of any size.
    [[nodiscard]] static QSize sizeOf(QByteArrayView contents);
    /// The first picture with the fields that make it, and none of those that tell of it or lead elsewhere.
    [[nodiscard]] static QByteArray bare(QByteArrayView contents);
};

}  // namespace brimvault::ui
