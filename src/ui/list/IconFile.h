#pragma once

#include <QByteArray>
#include <vector>

#include "platform/ApplicationIcon.h"

namespace brimvault::ui {

/// One picture in a file of others, found without being decoded. It is read in the file's contents, which outlive it.
struct IconPicture {
    enum class Form { png, tiff, gif, bmp, xpm, iconElement, iconBitmap };

    Form form;
    int side;                ///< the longer one, in pixels; 0 where the form does not tell
    QByteArrayView picture;  ///< what of the file is this one
    QByteArrayView mask;     ///< of an element of an icon file (icns), the element that says what is to be seen of it

    /// The name of the only reader that may see it, and what it is to see: the picture alone.
    [[nodiscard]] QByteArray reader() const;
    [[nodiscard]] QByteArray contents() const;
};

/// The file of an icon. It is data of others: what reaches a decoder is known by then to be small, and to be of a form
/// that costs little to decode. Drawings (SVG) and photographs (JPEG) can take any time, and are no icons. Any thread.
class IconFile {
public:
    static constexpr qsizetype mostBytes = platform::ApplicationIcon::maxBytes;
    /// In pixels: twice the largest icons there are. Larger ones are none, and would cost more than they show.
    static constexpr int largestSide = 2048;

    /// The pictures that may be decoded; empty where it is no icon.
    [[nodiscard]] static std::vector<IconPicture> pictures(QByteArrayView contents);
};

}  // namespace brimvault::ui
