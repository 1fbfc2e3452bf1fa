#include <string>

#include "cleaner-tool/protocol/MeetingPlace.h"

namespace brimvault::cleaner {

std::filesystem::path meetingFolder(uid_t user) {
    return std::filesystem::path("/run/brimvault") / std::to_string(user);
}

}  // namespace brimvault::cleaner
