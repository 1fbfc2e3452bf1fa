#pragma once

#include <QLatin1String>

#include "files/NodeStatus.h"

namespace brimvault::ui {

/// The picture of a file, a folder or a link; on the ground of a selected row another one. Any thread.
[[nodiscard]] inline QLatin1String filePicture(files::NodeKind kind, bool onSelection) {
    switch (kind) {
        case files::NodeKind::directory:
            return QLatin1String(onSelection ? "icFolderInv" : "icFolder");
        case files::NodeKind::link:
            return QLatin1String(onSelection ? "icLinkInv" : "icLink");
        default:
            return QLatin1String(onSelection ? "icFileInv" : "icFile");
    }
}

}  // namespace brimvault::ui
