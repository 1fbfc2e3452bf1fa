#pragma once

#include <QStringList>

#include "platform/TrashRecord.h"

namespace brimvault::engine::trashTexts {

/// Where it was and when it was deleted, for people, as far as that is known. Each one line, whatever the record holds.
[[nodiscard]] QString origin(const platform::TrashRecord& record);
/// Empty where it is not known.
[[nodiscard]] QString deleted(const platform::TrashRecord& record);

/// Both, as lines of a tooltip.
[[nodiscard]] QStringList lines(const platform::TrashRecord& record);

}  // namespace brimvault::engine::trashTexts
