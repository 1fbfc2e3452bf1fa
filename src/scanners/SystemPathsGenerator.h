#pragma once

#include <filesystem>

namespace brimvault::scanners {

/// The home folder of the user who runs the process, and the expansion of "~/". Made on first use, immutable
/// afterwards; any thread.
class SystemPathsGenerator {
public:
    SystemPathsGenerator();
    static const SystemPathsGenerator& shared();

    [[nodiscard]] const std::filesystem::path& homeFolder() const { return homeFolder_; }
    /// Replaces a leading "~/" by the home folder; any other path, also "~" or "~name", is returned unchanged.
    [[nodiscard]] std::filesystem::path urlForPath(const std::filesystem::path& path) const;

private:
    const std::filesystem::path homeFolder_;
};

}  // namespace brimvault::scanners
