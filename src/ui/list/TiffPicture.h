#pragma once

#include <QByteArray>
#include <QSize>

namespace brimvault::ui {

/// Parses an untrusted TIFF file without decoding it. Any thread.
class TiffPicture {
public:
    [[nodiscard]] static bool isTiff(QByteArrayView contents);
    /// Of the first picture, in pixels; empty if it is no TIFF file, or is compressed as no icon is: as a photograph,
    /// or in tiles, which may be of any size.
    [[nodiscard]] static QSize sizeOf(QByteArrayView contents);
    /// The first picture without metadata and without references to further pictures.
    [[nodiscard]] static QByteArray withoutMetadata(QByteArrayView contents);
};

}  // namespace brimvault::ui
