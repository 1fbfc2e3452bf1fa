#pragma once

#include <filesystem>

namespace brimvault::engine {

/// Removes with an administrator's rights what the user may not remove. Any thread but the main one, where nothing else
/// is said; blocks while the user is asked.
class PrivilegedRemover {
public:
    virtual ~PrivilegedRemover() = default;

    /// The next removal may ask the user for an administrator's password, once; until then none does. Any thread.
    virtual void letAskUser() {}

    /// YES only when nothing is left under the path.
    [[nodiscard]] virtual bool removeFileAtPath(const std::filesystem::path& path) = 0;

    /// One that has no such rights and always answers NO.
    [[nodiscard]] static PrivilegedRemover& none();
};

}  // namespace brimvault::engine
