#pragma once

#include <QString>

#include "engine/notification/Notification.h"

namespace brimvault::engine {

/// Texts about the folders in which a section looks for files. Main thread.
namespace placeTexts {

/// All of its folders, a line for each: where a link leads, and why a folder is skipped.
[[nodiscard]] QString all(const Places& places);
/// Only what the user would not expect: links, and folders that are skipped; empty if there are none.
[[nodiscard]] QString unusual(const Places& places);
/// The folders that are skipped, and why; empty if there are none.
[[nodiscard]] QString refused(const Places& places);

}  // namespace placeTexts

}  // namespace brimvault::engine
