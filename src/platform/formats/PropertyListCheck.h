#pragma once

#include <string>

namespace brimvault::platform {

/// Whether libplist can parse the contents safely. It recurses over the tree and expands shared references, so a small
/// file can exhaust the stack (nesting) or memory (billion laughs). Any thread.
[[nodiscard]] bool isHarmlessXmlPropertyList(const std::string& contents);
[[nodiscard]] bool isHarmlessBinaryPropertyList(const std::string& contents);

}  // namespace brimvault::platform
