#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string_view>
#include <vector>

#include "files/DirectoryHandle.h"

namespace brimvault::scanners {

/// Whether the folder is one in which a browser, or a program built on one, keeps its settings and caches. It is
/// recognised by what it holds, since such programs have any name: at least two of the files and folders that all of
/// them have.
[[nodiscard]] bool isProfileFolder(const files::DirectoryHandle& folder);

/// The profiles in such a folder, from the folder on: itself (an empty path), and those in it that have settings of
/// their own. `isData` tells of a name whether such programs keep data there, so that it is no profile.
[[nodiscard]] std::vector<std::filesystem::path> profilesIn(const files::DirectoryHandle& folder,
                                                            const std::function<bool(std::string_view name)>& isData,
                                                            const std::stop_token& stop);

}  // namespace brimvault::scanners
