#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
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

    /// True when all of the rights are held now. With interaction, the user may be asked for an administrator's
    /// password; a stop withdraws the question, and the answer is then false. Without, it ends the check likewise.
    /// Where a grant holds for one use only, true says that the start of the program will ask; the same stop ends that
    /// start.
    [[nodiscard]] virtual bool copyRights(const std::vector<RightItem>& rights, Interaction interaction,
                                          const std::stop_token& stop) = 0;
    /// Starts the program with the administrator's rights; waits for the user's answer where that is asked for now, but
    /// not for the program. True when it was started.
    [[nodiscard]] virtual bool executeWithPrivileges(const std::filesystem::path& tool,
                                                     const std::vector<std::string>& arguments) = 0;
    /// Whether the program that was started last has not ended yet. Reaps all that have.
    [[nodiscard]] virtual bool isToolRunning() = 0;
    /// Gives all rights back.
    virtual void destroyRights() = 0;

    /// The implementation for this system. Null where nothing that grants rights is installed or, in a trial, within
    /// reach. Asks nobody.
    [[nodiscard]] static std::unique_ptr<Authorization> create();
};

using AuthorizationFactory = std::function<std::unique_ptr<Authorization>()>;

/// The program that this one runs with the administrator's rights.
[[nodiscard]] std::filesystem::path rootRemoverPath();

}  // namespace brimvault::platform
