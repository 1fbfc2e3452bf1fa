#include "files/Result.h"

#include <system_error>

namespace brimvault::files {

std::string Failure::text() const { return std::generic_category().message(code); }

}  // namespace brimvault::files
