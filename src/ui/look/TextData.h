#pragma once

#include <QLatin1String>
#include <QString>

namespace brimvault::ui {

/// What a cell of text shows. A value.
struct TextData {
    QString title;
    QString subtitle;       ///< empty for a cell of one line
    bool selected = false;  ///< its row is
    bool muted = false;     ///< its row counts for nothing at present
};

/// The same with a picture before it.
struct TextImgData : TextData {
    QString note = {};      ///< below the subtitle; mostly empty
    QLatin1String picture;  ///< by name; on a selected row it has another form, of the same name with "Sel"
};

}  // namespace brimvault::ui
