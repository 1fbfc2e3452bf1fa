#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include "ui/list/IconFile.h"

namespace brimvault::ui {

/// Decodes untrusted pictures and scales them into a square of that many pixels, keeping their proportions. Any thread.
class IconImage {
public:
    static constexpr int maxSide = IconFile::maxSide;

    /// The picture of an icon file that fits best. Null if the file is damaged, too large, or of a format that is
    /// refused or has no plug-in.
    [[nodiscard]] static QImage ofContents(const QByteArray& contents, int pixels);
    /// The same for a file of the desktop's icon theme, which may be SVG as well; null for drawings that refer to other
    /// files or repeat parts many times.
    [[nodiscard]] static QImage ofDesktopFile(const QString& file, int pixels);

    /// Limits the memory that Qt allocates for a picture, in the whole process. Call it before the first one is
    /// decoded. Main thread.
    static void limitMemory();
};

}  // namespace brimvault::ui
