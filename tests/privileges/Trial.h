#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/operations/FCutter.h"
#include "engine/removal/Remover.h"

namespace brimvault::tests {

/// One of the users that `with-system-bus` has made.
struct User {
    const char* name;
    uid_t number;

    [[nodiscard]] std::filesystem::path home() const { return std::filesystem::path("/run/home") / name; }
};
inline constexpr User mayRemove{"may", 60001};      ///< allowed without a question
inline constexpr User deniedUser{"denied", 60002};  ///< denied without a question
inline constexpr User askedUser{"asked", 60003};
inline constexpr User remoteUser{"remote", 60004};  ///< asked each time: grants are not kept (auth_admin)

enum class Agent { none, grants, refuses, hesitates };

/// Drops all rights but those of the user, for good.
void become(const User& user);

/// A process that sends signals as root, for one that has dropped its rights.
class AdministratorsHand {
public:
    AdministratorsHand();
    AdministratorsHand(const AdministratorsHand&) = delete;
    AdministratorsHand& operator=(const AdministratorsHand&) = delete;
    void send(int signal, pid_t process) const;

private:
    int requests_ = -1;
    int answers_ = -1;
};

/// Starts a polkit agent for a process, and waits until it is registered. It ends with the calling process.
void startAgent(pid_t process, Agent agent, const std::filesystem::path& questions);

/// A process of the user's that does nothing, and ends with the calling one.
[[nodiscard]] pid_t startIdler(const User& user);

/// The program as one of the users runs it, in a child process that has dropped all other rights: the real remover and
/// clean operations over that user's home folder.
class Trial {
public:
    Trial(const User& user, Agent agent);
    ~Trial();

    struct Result {
        std::size_t removed = 0;
        std::map<std::string, std::string> notRemoved;  ///< name to reason
    };
    /// Cleans these items of the caches folder, and waits for the end.
    Result clean(const std::vector<std::string>& names);
    /// The same, without waiting.
    void beginClean(const std::vector<std::string>& names);
    [[nodiscard]] Result finishClean();
    /// As the user does who presses "Stop".
    void stopClean();

    [[nodiscard]] std::filesystem::path caches() const { return user_.home() / "Library" / "Caches"; }
    /// How often the user was asked.
    [[nodiscard]] int questions() const;
    /// The root remover that serves this process; 0 for none.
    [[nodiscard]] pid_t tool() const;
    [[nodiscard]] engine::Remover& remover() const;
    void sendAsAdministrator(int signal, pid_t process) const { hand_.send(signal, process); }
    /// From now on the system bus cannot be found.
    void loseSystemBus();

private:
    struct Running;

    const User& user_;
    const std::filesystem::path questions_;
    AdministratorsHand hand_;
    std::unique_ptr<Running> running_;
};

/// Makes the user's home folder anew, with a caches folder.
void makeHome(const User& user);
/// A folder of root's in its caches, with files that the user may not remove.
void makeLockedFolder(const User& user, const std::string& name, int files = 3);

/// False for a zombie.
[[nodiscard]] bool isAlive(pid_t process);
/// The root remover that has been started by a process; 0 for none.
[[nodiscard]] pid_t toolOf(pid_t application);
/// Whether the condition becomes true within the timeout; the default is ample for everything that works.
[[nodiscard]] bool comes(const std::function<bool()>& condition,
                         std::chrono::seconds timeout = std::chrono::seconds(60));

}  // namespace brimvault::tests
