#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string_view>

#include "files/DirectoryHandle.h"

namespace brimvault::scanners {

/// Whether a name fits a pattern, in which "*" stands for any bytes and "#" for one or more digits.
[[nodiscard]] bool fits(std::string_view name, std::string_view pattern);

/// The names of a path or a pattern up to the first "/", and what follows it.
struct FirstName {
    std::string_view name;
    std::string_view rest;  ///< empty behind the last name
};
[[nodiscard]] FirstName firstName(std::string_view path);

/// Something that fits a pattern of several names. Valid during the call.
struct PlaceMatch {
    const files::DirectoryHandle& parent;  ///< the folder in which it lies
    const std::filesystem::path& path;     ///< from the base on
    files::NodeKind kind;
};

/// Calls with everything below the folder that fits the pattern, one name at a time. No symbolic link is followed and
/// no other mount entered on the way. In the order of the names' bytes.
void forEachFitting(const files::DirectoryHandle& folder, std::string_view pattern, const std::stop_token& stop,
                    const std::function<void(const PlaceMatch&)>& call);

}  // namespace brimvault::scanners
