#pragma once

#include <QStringList>

#include "engine/ItemArrays.h"

namespace brimvault::ui {

/// What may be lost with items that carry a note: a line for each of the most serious three, of these the largest
/// first, with its name and its note, and one for the rest. Main thread.
[[nodiscard]] QStringList noteLines(engine::ItemArray noted);

}  // namespace brimvault::ui
