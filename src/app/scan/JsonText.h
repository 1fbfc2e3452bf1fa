#pragma once

#include <string>
#include <vector>

#include "app/scan/Findings.h"

namespace brimvault::app {

/// The findings for programs: one JSON object in UTF-8 and a line break, as README.md describes it. Keys always stand
/// in the same order. Any thread.
[[nodiscard]] std::string jsonText(const std::vector<SectionFindings>& findings);

}  // namespace brimvault::app
