#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>

#include "files/DirectoryHandle.h"
#include "files/trees/Inspect.h"

namespace brimvault::files {

enum class Sizes : std::uint8_t { wanted, unwanted };

/// An entry of a folder that can be measured. Valid during the call.
struct MeasurableEntry {
    const char* name;
    NodeKind kind;  ///< as it was listed
    Sizes sizes;    ///< as the caller answered for the name
    /// Its logical size as `measureItem` has it, and all else where that was asked for; asked at most once. May be less
    /// after a stop.
    const std::function<ItemFindings()>& findings;
};

/// Calls with every direct child of the folder, in the listing's order or that of the inodes, on the calling thread,
/// until the call answers false or a stop is requested. Meanwhile pool threads measure the next ones ahead, so that
/// many small folders keep all CPUs busy as one large one does. `sizes` says, on the calling thread, whether a name's
/// size will be asked for; others are not measured ahead. With `open`, entries are inspected, else their sizes alone
/// are found.
///
/// Hidden are the names that begin with a full stop. 0, or the errno value that kept the folder from being read to its
/// end. The folder is held open for listing, and listed from its start. Any thread.
[[nodiscard]] int forEachMeasurable(const DirectoryHandle& folder, HiddenEntries hidden, const std::stop_token& stop,
                                    const std::function<Sizes(const char* name)>& sizes,
                                    const std::function<bool(const MeasurableEntry&)>& call,
                                    const OpenFiles* open = nullptr);
/// The same of the folder at a path; one reached through a link is not read.
[[nodiscard]] int forEachMeasurable(const std::filesystem::path& folder, HiddenEntries hidden,
                                    const std::stop_token& stop, const std::function<Sizes(const char* name)>& sizes,
                                    const std::function<bool(const MeasurableEntry&)>& call);

}  // namespace brimvault::files
