#pragma once

#include <QByteArray>
#include <QSize>

namespace brimvault::ui {

/// A picture of others in the form of PNG, looked at without being decoded. Any thread.
class PngPicture {
public:
    /// Pixels; empty where it is no such picture.
    [[nodiscard]] static QSize sizeOf(QByteArrayView contents);
    /// The picture with the chunks that make it, and none of those that tell of it: texts and colour profiles may be
    /// packed a thousandfold, and a decoder unpacks them all.
    [[nodiscard]] static QByteArray bare(QByteArrayView contents);
};

}  // namespace brimvault::ui
