#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace brimvault::ui {

/// A picture of others, made to fit into a square of that many pixels with its shape kept. Any thread.
class IconImage {
public:
    /// Larger ones are no icons, and would cost more than they show.
    static constexpr int largestSide = 4096;

    /// Of what a picture file of an application holds: of several pictures in it the one that serves best. Null where
    /// it is broken, too large, or of a format that is no icon's or cannot be read here.
    [[nodiscard]] static QImage ofContents(QByteArray contents, int pixels);
    /// Of a file of the desktop's own, of any format that can be read here; null where there is none.
    [[nodiscard]] static QImage ofDesktopFile(const QString& file, int pixels);

    /// How much memory a picture may take while it is read, for the whole process; to be called before the first is.
    /// Main thread.
    static void limitMemory();
};

}  // namespace brimvault::ui
