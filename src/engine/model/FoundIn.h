#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/SectionRoots.h"

namespace brimvault::engine {

/// Where items were found. Those of one folder share it. Not changed once items have it; any thread.
struct FoundIn {
    /// Of the folder that holds the items, with a slash at the end; or of the one item, where it is listed under
    /// another name than its own.
    std::string path;
    std::optional<files::FileIdentity> folder = {};             ///< the one that holds the items; none when not known
    std::shared_ptr<const platform::RootPlace> root = nullptr;  ///< how the folder was come by; null when not known
};

}  // namespace brimvault::engine
