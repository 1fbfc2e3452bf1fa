#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/FixtureTrees.h"

namespace brimvault::tests {

/// One of the users that `with-system-bus` has made.
struct User {
    const char* name;
    uid_t number;

    [[nodiscard]] fs::path home() const { return fs::path("/run/home") / name; }
    [[nodiscard]] fs::path caches() const { return home() / "Library/Caches"; }
};
inline constexpr User mayRemove{"may", 60001};      ///< allowed without a question
inline constexpr User deniedUser{"denied", 60002};  ///< denied without a question
inline constexpr User askedUser{"asked", 60003};
inline constexpr User remoteUser{"remote", 60004};  ///< asked each time: grants are not kept (auth_admin)

enum class Agent { none, grants, refuses, hesitates };

/// Drops all rights but those of the user, for good.
void become(const User& user);

/// Starts a polkit agent for a process, and waits until it is registered. It ends with the calling process.
void startAgent(pid_t process, Agent agent, const fs::path& questions);

/// The program as one of the users runs it, in a child process that has dropped all other rights: the real remover and
/// clean operations over that user's home folder.
class Trial {
public:
    /// The environment holds just these variables.
    Trial(const User& user, Agent agent, std::map<std::string, std::string> environment = {});
    ~Trial();

    using Names = std::vector<std::string>;
    /// Cleans these items of the caches folder. Empty when all were removed but those that are to stay, each for want
    /// of rights; else what became of them.
    [[nodiscard]] std::string clean(const Names& names, const Names& stay = {});
    /// The same, without waiting for the end.
    void beginClean(const Names& names);
    [[nodiscard]] std::string finishClean(std::size_t removed, const Names& stay);
    /// As the user does who presses "Stop".
    void stopClean();

    /// Empty when the user was asked so often.
    [[nodiscard]] std::string expectQuestions(int count) const;
    /// Waits until the agent has been called so often.
    [[nodiscard]] bool hearsCalls(int count) const;
    /// The root remover that serves this process; 0 for none.
    [[nodiscard]] pid_t tool() const;
    void sendAsAdministrator(int signal, pid_t process) const;

private:
    struct Running;

    const User& user_;
    const fs::path questions_;
    std::FILE* const administrator_;  ///< the input of a shell with the rights of root
    std::unique_ptr<Running> running_;
};

/// Makes the user's home folder anew, with a caches folder.
void makeHome(const User& user);
/// An empty trash in it.
void makeTrash(const User& user);
/// A folder of root's in its caches, with files that the user may not remove.
void makeLockedFolder(const User& user, const std::string& name, int files = 3);

/// The root remover that has been started by a process; 0 for none.
[[nodiscard]] pid_t toolOf(pid_t application);
/// Whether the process ends within the timeout; a zombie has ended. The defaults are ample for everything that works.
[[nodiscard]] bool ends(pid_t process, std::chrono::milliseconds timeout = std::chrono::minutes(1));
/// The exit code of a child process, or how it ended otherwise.
[[nodiscard]] std::string endOf(pid_t child);
/// Whether it holds in a child process of the calling one.
[[nodiscard]] bool holdsInOtherProcess(const std::function<bool()>& condition);
/// For a child process that has its rights for good: they would reset the signal at the parent's end.
[[noreturn]] void pauseUntilParentEnds();
/// Whether the condition becomes true within the timeout.
[[nodiscard]] bool comes(const std::function<bool()>& condition);

}  // namespace brimvault::tests
