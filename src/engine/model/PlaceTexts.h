#pragma once

#include <QString>
#include <QStringList>

#include "engine/model/FFItem.h"
#include "engine/notification/Notification.h"

namespace brimvault::engine {

/// Texts about the folders in which a section looks for files, and about what an item stands for. Main thread.
namespace placeTexts {

/// All of its folders, a line for each: where a link leads, and why a folder is skipped.
[[nodiscard]] QString all(const Places& places);
/// Only what the user would not expect: links, and folders that are skipped; empty if there are none.
[[nodiscard]] QString unusual(const Places& places);
/// The folders that are skipped, and why; empty if there are none.
[[nodiscard]] QString refused(const Places& places);

/// The things that an item stands for, a line for each of the first and one for the rest.
[[nodiscard]] QStringList ofTargets(const FFItem& item);

}  // namespace placeTexts

}  // namespace brimvault::engine
