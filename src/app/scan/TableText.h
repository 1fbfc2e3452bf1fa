#pragma once

#include <QString>
#include <vector>

#include "app/scan/Findings.h"

namespace brimvault::app {

/// The findings for people: per section a heading with its total, and a line for each item. Nothing in it controls a
/// terminal but line breaks. Main thread.
[[nodiscard]] QString tableText(const std::vector<SectionFindings>& findings);

}  // namespace brimvault::app
