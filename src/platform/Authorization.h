#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brimvault::platform {

/// A right to ask for: what kind it is, and what it is for.
struct RightItem {
    std::string name;   ///< "system.privilege.admin": to run a program with the administrator's rights
    std::string value;  ///< the path of that program; bytes
};

enum class Interaction { none, allowed };

/// What the process may do beyond the rights of its user, while the user lets it. One thread at a time, but never the
/// main thread: the calls block, those that may ask for as long as the user takes to answer.
class Authorization {
public:
    virtual ~Authorization() = default;

    /// YES when all of the rights are held now. With interaction, the user may be asked for an administrator's
    /// password; once `givesUp` answers true, the question is withdrawn and the answer is NO. Where what is granted
    /// holds for one use, YES says that the user will be asked by the start of the program, which is given up alike.
    [[nodiscard]] virtual bool copyRights(const std::vector<RightItem>& rights, Interaction interaction,
                                          const std::function<bool()>& givesUp) = 0;
    /// Starts the program with the administrator's rights and does not wait for it, but for the user's answer where
    /// that is asked for now. YES when it was started.
    [[nodiscard]] virtual bool executeWithPrivileges(const std::filesystem::path& tool,
                                                     const std::vector<std::string>& arguments) = 0;
    /// Whether the program that was started last has not ended yet. Takes note, for the system, of all that have.
    [[nodiscard]] virtual bool isToolRunning() = 0;
    /// Gives all rights back.
    virtual void destroyRights() = 0;

    /// The one of this system. None where rights can be given to nobody: what gives them is not installed or, in a
    /// trial, out of reach. Asks nobody.
    [[nodiscard]] static std::unique_ptr<Authorization> create();
};

using AuthorizationFactory = std::function<std::unique_ptr<Authorization>()>;

/// The folder of the programs that belong to this one and are run with other rights than its own.
[[nodiscard]] std::filesystem::path resourcesFolder();

}  // namespace brimvault::platform
