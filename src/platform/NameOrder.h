#pragma once

#include <QString>
#include <string>

namespace brimvault::platform {

/// The bytes by which a name stands among others in the order of the user's language, digits by value, capitals as
/// small letters: compared as `strcmp` does. None of them is zero. Making them takes long, comparing does not. Any
/// thread; answers differ between runs in different languages.
[[nodiscard]] std::string nameSortKey(const QString& name);

}  // namespace brimvault::platform
