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
inline constexpr User mayRemove{"may", 60001};      ///< without being asked
inline constexpr User deniedUser{"denied", 60002};  ///< without being asked
inline constexpr User askedUser{"asked", 60003};
inline constexpr User remoteUser{"remote", 60004};  ///< asked each time: what is granted is not kept

enum class Agent { none, grants, refuses, hesitates };

/// Gives up all rights but those of the user, for good.
void become(const User& user);

/// A process that sends signals with the administrator's rights, for one that has given them up.
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

/// Starts an agent that answers for a process, and waits until it does. It ends with the calling process.
void startAgent(pid_t process, Agent agent, const std::filesystem::path& questions);

/// A process of the user's that does nothing, and ends with the calling one.
[[nodiscard]] pid_t startIdler(const User& user);

/// The program, as one of the users runs it, in a child process that has given up all other rights: the real remover
/// and clean operations over that user's home folder.
class Trial {
public:
    Trial(const User& user, Agent agent);
    ~Trial();

    struct Result {
        std::size_t removed = 0;
        std::map<std::string, std::string> notRemoved;  ///< name to reason
    };
    /// Cleans so many items of the caches folder, and waits for the end.
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
    /// From now on there is no system bus to be found.
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
/// A folder of the administrator's in it, with files that the user may not remove.
void makeLockedFolder(const User& user, const std::string& name, int files = 3);

/// Whether it still works at something; one that has ended and waits to be taken note of does not.
[[nodiscard]] bool isAlive(pid_t process);
/// The root remover that has been started by a process; 0 for none.
[[nodiscard]] pid_t toolOf(pid_t application);
/// Whether the condition came to hold within a time in which everything does that works, or within the time given.
[[nodiscard]] bool comes(const std::function<bool()>& condition,
                         std::chrono::seconds patience = std::chrono::seconds(60));

}  // namespace brimvault::tests
