#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include "ui/list/IconFile.h"

namespace brimvault::ui {

/// A picture of others, made to fit into a square of that many pixels with its shape kept. Any thread.
class IconImage {
public:
    static constexpr int largestSide = IconFile::largestSide;

    /// Of what a picture file of an application holds: of several pictures in it the one that serves best. Null where
    /// it is broken, too large, or of a format that is no icon's or cannot be read here.
    [[nodiscard]] static QImage ofContents(const QByteArray& contents, int pixels);
    /// Of a file of the desktop's own, which may be a drawing; null where there is none, or one that names other files
    /// or repeats itself.
    [[nodiscard]] static QImage ofDesktopFile(const QString& file, int pixels);

    /// How much memory a picture may take while it is read, for the whole process; to be called before the first is.
    /// Main thread.
    static void limitMemory();
};

}  // namespace brimvault::ui
