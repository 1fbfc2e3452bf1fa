#pragma once

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "trial/SampleHome.h"

namespace brimvault::tests {

using namespace trial;

/// Trees for tests, each made in a new folder at the path. Sizes are logical bytes of all that is no folder.

/// Links to a file, to a folder and to nothing, out of the tree (into `outside`) and beside a file of 5 bytes.
std::uint64_t makeLinks(const std::filesystem::path& folder, const std::filesystem::path& outside);
/// Links to the folder that holds them, to the one above and to themselves.
std::uint64_t makeLoops(const std::filesystem::path& folder);
/// "empty" (mode 000, empty), "full" (mode 000, holds "kept"), "closed" (mode 555, holds "kept") and "open/gone".
void makePermissions(const std::filesystem::path& folder);
/// A file and a folder with a file for each odd name.
std::uint64_t makeOddNames(const std::filesystem::path& folder);
/// Folders inside each other, with a file of 3 bytes in the innermost.
void makeDeep(const std::filesystem::path& folder, int depth);
/// So many empty files side by side.
void makeWide(const std::filesystem::path& folder, int count);

/// Up to so many levels with files, sparse files, links, hidden and odd names, and files of two names.
void growRandomly(std::mt19937& random, const std::filesystem::path& folder, int levels);

/// "proc/self/mountinfo" below the root, as the kernel writes it for volumes mounted at these places.
void writeMountTable(const std::filesystem::path& root, const std::vector<std::filesystem::path>& mountPoints);

/// What a scan is to find, by other means than its own: the lengths of all that is no folder, links not followed.
[[nodiscard]] std::uint64_t sizeOf(const std::filesystem::path& path);

/// A line break, bytes that are no UTF-8, 255 bytes, leading spaces and dashes, what a shell would expand.
[[nodiscard]] const std::vector<std::string>& oddNames();

}  // namespace brimvault::tests
