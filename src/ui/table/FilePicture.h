#pragma once

#include <QLatin1String>

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

}  // namespace brimvault::ui
