#pragma once

#include <filesystem>

namespace brimvault::scanners {

/// The home folder of the user who runs the process, and the rule for paths that begin with "~/". Made on the first
/// use, not changed afterwards; any thread.
class SystemPathsGenerator {
public:
    SystemPathsGenerator();
    static const SystemPathsGenerator& shared();

    [[nodiscard]] const std::filesystem::path& homeFolder() const { return homeFolder_; }
    /// "~/" at the beginning stands for the home folder; any other path, a lone "~" or "~name" too, is taken as it is.
    [[nodiscard]] std::filesystem::path urlForPath(const std::filesystem::path& path) const;

private:
    const std::filesystem::path homeFolder_;
};

}  // namespace brimvault::scanners
