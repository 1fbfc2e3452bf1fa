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

/// Which picture stands in a row: one of the window's own, and what is needed to find a better one where there is any.
/// Any thread.
struct RowPicture {
    enum class Better {
        none,
        ofApplication,  ///< `source` is the path of its bundle
        ofFileType      ///< `source` is the name of a file of the type
    };

    RowPicture() = default;
    RowPicture(QLatin1String picture) : general(picture) {}
    RowPicture(QLatin1String picture, Better kind, const std::string& bytes)
        : general(picture), better(kind), source(QByteArray::fromStdString(bytes)) {}

    QLatin1String general;  ///< its name; with "Inv" behind it, that on the ground of a selected row
    Better better = Better::none;
    QByteArray source;

    bool operator==(const RowPicture&) const = default;
};

[[nodiscard]] inline std::size_t qHash(const RowPicture& picture, std::size_t seed = 0) {
    return qHashMulti(seed, static_cast<int>(picture.better), picture.source);
}

}  // namespace brimvault::ui
