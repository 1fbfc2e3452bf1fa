#pragma once

#include <QByteArray>
#include <vector>

#include "platform/ApplicationIcon.h"

namespace brimvault::ui {

/// One picture of an untrusted icon file, found without decoding it. A view into the file's contents, which outlive it.
struct IconPicture {
    enum class Form { png, tiff, gif, bmp, xpm, iconElement, iconBitmap };

    Form form;
    int side;                ///< the longer one, in pixels; 0 if the format does not say
    QByteArrayView picture;  ///< its part of the file
    QByteArrayView mask;     ///< the element with the mask, for an element of an icns file

    /// The format name of the only QImageReader plug-in that may decode it, and a file for it with this picture alone.
    [[nodiscard]] QByteArray reader() const;
    [[nodiscard]] QByteArray contents() const;
};

/// Parses an icon file. The data is untrusted, so only pictures that are known to be small and of a format that is
/// cheap to decode reach a decoder; drawings (SVG) and photographs (JPEG) are refused. Any thread.
class IconFile {
public:
    static constexpr qsizetype maxBytes = platform::ApplicationIcon::maxBytes;
    /// In pixels: twice the size of the largest icons in use. Larger pictures are refused.
    static constexpr int maxSide = 2048;

    /// The pictures that may be decoded; empty if the file is no icon.
    [[nodiscard]] static std::vector<IconPicture> pictures(QByteArrayView contents);
};

}  // namespace brimvault::ui
