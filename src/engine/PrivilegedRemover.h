#pragma once

#include <filesystem>

namespace brimvault::engine {

/// Removes with an administrator's rights what the user may not remove. Any thread but the main one; blocks while the
/// user is asked.
class PrivilegedRemover {
public:
    virtual ~PrivilegedRemover() = default;

    /// YES only when nothing is left under the path.
    [[nodiscard]] virtual bool removeFileAtPath(const std::filesystem::path& path) = 0;

    /// One that has no such rights and always answers NO.
    [[nodiscard]] static PrivilegedRemover& none();
};

}  // namespace brimvault::engine
