#pragma once

#include <QByteArray>
#include <QSize>

namespace brimvault::ui {

/// Parses an untrusted PNG file without decoding it. Any thread.
class PngPicture {
public:
    /// In pixels; empty if it is no PNG file.
    [[nodiscard]] static QSize sizeOf(QByteArrayView contents);
    /// The picture without metadata: texts and colour profiles are compressed up to a thousandfold, and a decoder
    /// inflates them all.
    [[nodiscard]] static QByteArray withoutMetadata(QByteArrayView contents);
};

}  // namespace brimvault::ui
