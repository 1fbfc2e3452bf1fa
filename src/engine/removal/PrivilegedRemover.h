#pragma once

#include <filesystem>

namespace brimvault::engine {

/// Removes with an administrator's rights what the user may not remove. Any thread but the main one, unless stated
/// otherwise; blocks while the user is asked.
class PrivilegedRemover {
public:
    virtual ~PrivilegedRemover() = default;

    /// Allows one question for an administrator's password from now on. Any thread.
    virtual void allowAskingUser() {}
    /// Withdraws an open question, and allows none from now on. Any thread.
    virtual void stopAskingUser() {}

    /// True only if nothing is left under the path.
    [[nodiscard]] virtual bool removeFileAtPath(const std::filesystem::path& path) = 0;

    /// One without such rights, which always answers false.
    [[nodiscard]] static PrivilegedRemover& none();
};

inline PrivilegedRemover& PrivilegedRemover::none() {
    class WithoutPrivileges final : public PrivilegedRemover {
    public:
        bool removeFileAtPath(const std::filesystem::path& /*path*/) override { return false; }
    };
    static WithoutPrivileges remover;
    return remover;
}

}  // namespace brimvault::engine
