#pragma once

#include <QLatin1String>
#include <QString>

namespace brimvault::ui {

/// What a cell of text shows. A value.
struct TextData {
    QString title;
    QString subtitle;       ///< empty for a cell of one line
    bool selected = false;  ///< whether its row is
    bool muted = false;     ///< whether its section is unticked, or it cannot be removed
};

/// The same with a picture before the text.
struct TextImgData : TextData {
    QString note = {};      ///< a third line; mostly empty
    QLatin1String picture;  ///< its name; a selected row shows the one with "Sel" appended
};

}  // namespace brimvault::ui
