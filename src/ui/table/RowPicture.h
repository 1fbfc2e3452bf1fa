#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QLatin1String>
#include <string>

#include "files/NodeStatus.h"

namespace brimvault::ui {

/// The picture of a file, a folder or a link. Any thread.
[[nodiscard]] inline QLatin1String filePicture(files::NodeKind kind) {
    switch (kind) {
        case files::NodeKind::directory:
            return QLatin1String("icFolder");
        case files::NodeKind::link:
            return QLatin1String("icLink");
        default:
            return QLatin1String("icFile");
    }
}

/// The picture of a row: one of the window's own, and where to look for a more specific icon. Any thread.
struct RowPicture {
    enum class Better {
        none,
        ofApplication,   ///< `source` is the path of its bundle
        ofDesktopEntry,  ///< `source` is the identifier of the entry
        ofFileType       ///< `source` is the name of a file of the type
    };

    RowPicture() = default;
    RowPicture(QLatin1String picture) : general(picture) {}
    RowPicture(QLatin1String picture, Better kind, const std::string& bytes)
        : general(picture), better(kind), source(QByteArray::fromStdString(bytes)) {}

    QLatin1String general;  ///< its name; a selected row shows the one with "Inv" appended
    Better better = Better::none;
    QByteArray source;

    bool operator==(const RowPicture&) const = default;
};

[[nodiscard]] inline std::size_t qHash(const RowPicture& picture, std::size_t seed = 0) {
    return qHashMulti(seed, static_cast<int>(picture.better), picture.source);
}

}  // namespace brimvault::ui
