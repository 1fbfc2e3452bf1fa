#pragma once

#include <QtGlobal>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <vector>

#include "files/OpenFiles.h"

namespace brimvault::engine {

/// A volume that is held for as long as this exists. Calls block as long as it does; any thread.
class HeldVolume {
public:
    HeldVolume() = default;
    HeldVolume(const HeldVolume&) = delete;
    HeldVolume& operator=(const HeldVolume&) = delete;
    virtual ~HeldVolume() = default;

    [[nodiscard]] virtual std::optional<quint64> freeBytes() = 0;
    /// Has it free now what it would free later.
    virtual void flush() = 0;
};

/// What is asked about volumes to tell what a clean has freed. Any thread, several at once.
class Volumes {
public:
    Volumes() = default;
    Volumes(const Volumes&) = delete;
    Volumes& operator=(const Volumes&) = delete;
    virtual ~Volumes() = default;

    /// The volume of that device (`st_dev`) by a folder on it; null if it is not the one or cannot be opened. Blocks as
    /// long as the volume does.
    [[nodiscard]] virtual std::shared_ptr<HeldVolume> hold(const std::filesystem::path& folder,
                                                           std::uint64_t device) = 0;
    /// The files that have been removed from the devices while other programs hold them open.
    [[nodiscard]] virtual std::vector<files::RemovedFile> removedFilesInUse(const std::set<std::uint64_t>& devices,
                                                                            const std::stop_token& stop) = 0;

    /// Those of the machine; never destroyed, since threads that hang may outlive main().
    [[nodiscard]] static Volumes& ofSystem();
};

}  // namespace brimvault::engine
