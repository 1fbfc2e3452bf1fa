#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

enum class Sizes { wanted, unwanted };

/// An entry of a folder that can be measured. Valid during the call.
struct MeasurableEntry {
    const char* name;
    NodeKind kind;  ///< as it was listed
    Sizes sizes;    ///< as it was said of the name
    /// Its logical size in bytes as `measureItem` has it; asked at most once. May be less after a stop.
    const std::function<std::uint64_t()>& size;
};

/// Calls with every direct child of the folder, in the listing's order, on the calling thread, until the call answers
/// false or a stop is requested. While it is at one, those after it are measured by whoever of the pool has time: the
/// calling thread is never ahead of itself, and many small folders keep all processors busy as one large one does.
/// `sizes` says of a name, on the calling thread, whether its size will be asked for: else nothing is measured ahead.
///
/// Hidden are the names that begin with a full stop. 0, or the errno value that kept the folder from being read to its
/// end. The folder is held open for listing, and listed from its start. Any thread.
[[nodiscard]] int forEachMeasurable(const DirectoryHandle& folder, HiddenEntries hidden, const std::stop_token& stop,
                                    const std::function<Sizes(const char* name)>& sizes,
                                    const std::function<bool(const MeasurableEntry&)>& call);
/// The same of the folder at a path; one reached through a link is not read.
[[nodiscard]] int forEachMeasurable(const std::filesystem::path& folder, HiddenEntries hidden,
                                    const std::stop_token& stop, const std::function<Sizes(const char* name)>& sizes,
                                    const std::function<bool(const MeasurableEntry&)>& call);

}  // namespace brimvault::files
