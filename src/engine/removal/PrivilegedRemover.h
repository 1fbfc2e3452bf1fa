#pragma once

#include <filesystem>
#include <optional>

#include "files/NodeStatus.h"

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

    /// The folder that an item lies in; none if that is unknown.
    using Holder = std::optional<files::FileIdentity>;
    /// True only if nothing is left under the path. The user is asked meanwhile, which takes as long as it takes: if
    /// the path leads to another folder than the one given by then, nothing is removed.
    [[nodiscard]] virtual bool removeFileAtPath(const std::filesystem::path& path, const Holder& folder) = 0;

    /// One without such rights, which always answers false.
    [[nodiscard]] static PrivilegedRemover& none();
};

inline PrivilegedRemover& PrivilegedRemover::none() {
    class WithoutPrivileges final : public PrivilegedRemover {
    public:
        bool removeFileAtPath(const std::filesystem::path& /*path*/, const Holder& /*folder*/) override {
            return false;
        }
    };
    static WithoutPrivileges remover;
    return remover;
}

}  // namespace brimvault::engine
