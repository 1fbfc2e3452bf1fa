#include "cleaner-tool/protocol/MeetingPlace.h"

#include <algorithm>

namespace brimvault::cleaner {

bool isName(std::string_view name) {
    return name.starts_with(nameBeginning) && name.size() == nameBeginning.size() + digitsOfName &&
           std::all_of(name.begin() + nameBeginning.size(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace brimvault::cleaner
