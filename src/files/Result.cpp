#include "files/Result.h"

#include <cerrno>
#include <system_error>

namespace brimvault::files {

std::string Failure::text() const { return std::generic_category().message(code); }

bool Failure::isPermission() const { return code == EACCES || code == EPERM; }

}  // namespace brimvault::files
