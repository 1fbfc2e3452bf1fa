#pragma once

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;
namespace fs = std::filesystem;

/// Trees for tests, each made in a new folder at the path. Sizes are logical bytes of all that is no folder.

/// Links to a file, to a folder and to nothing, out of the tree (into `outside`) and beside a file of 5 bytes.
std::uint64_t makeLinks(const fs::path& folder, const fs::path& outside);
/// Links to the folder that holds them, to the one above and to themselves.
std::uint64_t makeLoops(const fs::path& folder);
/// "empty" (mode 000, empty), "full" (mode 000, holds "kept"), "closed" (mode 555, holds "kept") and "open/gone".
void makePermissions(const fs::path& folder);
/// A file and a folder with a file for each odd name.
std::uint64_t makeOddNames(const fs::path& folder);
/// Folders inside each other, with a file of 3 bytes in the innermost.
void makeDeep(const fs::path& folder, int depth);
/// So many empty files side by side.
void makeWide(const fs::path& folder, int count);

/// Up to so many levels with files, sparse files, links, hidden and odd names, and files of two names.
void growRandomly(std::mt19937& random, const fs::path& folder, int levels);

/// "proc/self/mountinfo" below the root, as the kernel writes it for volumes mounted at these places.
void writeMountTable(const fs::path& root, const std::vector<fs::path>& mountPoints);

/// What a scan is to find, by other means than its own: the lengths of all that is no folder, links not followed.
[[nodiscard]] std::uint64_t sizeOf(const fs::path& path);

/// What a file holds; nothing where it cannot be read.
[[nodiscard]] std::string contentOf(const fs::path& file);

/// A line break, bytes that are no UTF-8, 255 bytes, leading spaces and dashes, what a shell would expand.
[[nodiscard]] const std::vector<std::string>& oddNames();

}  // namespace brimvault::tests
