#pragma once

#include <string>

namespace brimvault::platform {

/// Whether the contents of a property list file can be given to the library that reads such files. It builds the whole
/// tree and takes it down again by calls within calls, and copies what is referred to twice: a small file can say so
/// much, or nest so deep, that memory or the stack is used up. Any thread.
[[nodiscard]] bool isHarmlessXmlPropertyList(const std::string& contents);
[[nodiscard]] bool isHarmlessBinaryPropertyList(const std::string& contents);

}  // namespace brimvault::platform
