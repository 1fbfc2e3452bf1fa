#pragma once

#include <atomic>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/removal/AuthorizationListener.h"
#include "platform/Authorization.h"

namespace brimvault::engine {

/// Obtains the administrator's rights from the user, and starts programs with them.
///
/// `setIsNeedAskAuthentication` and `giveUpAsking` may be called by any thread; all else by one at a time, and not by
/// the main thread, since it blocks: the Remover sees to that.
class AuthorizationManager {
public:
    using ToolPaths = std::vector<std::filesystem::path>;
    /// Kept of the program for the tool with the interface; the type is of no meaning.
    using CommandType = int;

    explicit AuthorizationManager(platform::AuthorizationFactory factory = platform::Authorization::create);
    AuthorizationManager(const AuthorizationManager&) = delete;
    AuthorizationManager& operator=(const AuthorizationManager&) = delete;
    ~AuthorizationManager() { deauthenticate(); }

    /// The one of the process, for the system that it runs on.
    static AuthorizationManager& GetInstance();

    /// Whether the next that needs rights may ask the user. NO at first, and again once that has failed or been
    /// refused. However often rights are needed, the user is asked at most once for each time that this was set to YES.
    void setIsNeedAskAuthentication(bool isNeeded);
    [[nodiscard]] bool m_bIsNeedAskAuthentication() const { return m_bIsNeedAskAuthentication_; }
    /// Withdraws a question that is open, which then counts as refused, and lets none be asked until it is needed
    /// again.
    void giveUpAsking();

    /// Whether the rights for the tools are held already; asks nobody. NO for no tools.
    [[nodiscard]] bool isAuthenticated(const ToolPaths& tools);
    /// Whether they are held or, where asking is allowed, could be obtained.
    [[nodiscard]] bool authenticate(const ToolPaths& tools);
    /// Asks the user. Answers whether that was done, not what came of it.
    bool fetchPassword(const ToolPaths& tools);
    /// Gives the rights back. Also done at the end.
    void deauthenticate();
    /// Starts the tool with the administrator's rights and at most 19 arguments, and does not wait for it. YES when it
    /// was started.
    [[nodiscard]] bool executeCommand(const std::filesystem::path& tool, const std::vector<std::string>& withArgs,
                                      CommandType andType);
    /// Whether the tool that was started last has not ended yet; takes note of its end for the system.
    [[nodiscard]] bool isToolRunning();

    /// From the first start to as many stops, the system tells this process nothing of the end of its children. Calls
    /// nest. YES while that is so.
    bool startIgnoreChildsSignals();
    /// Always YES.
    bool stopIgnoreChildsSignals();

    /// None, at first. Outlives the manager, or is taken away before.
    void setListener(AuthorizationListener* listener) { m_pListener_ = listener; }

private:
    /// None where the system gives rights to nobody.
    [[nodiscard]] platform::Authorization* authorizationRef();
    void tell(void (AuthorizationListener::*message)());

    const platform::AuthorizationFactory factory_;
    std::unique_ptr<platform::Authorization> m_pAuthorizationRef_;  ///< made when it is first needed
    std::atomic<bool> m_bIsNeedAskAuthentication_ = false;
    std::atomic<bool> isAskingGivenUp_ = false;
    std::atomic<unsigned> timesLet_ = 0;  ///< how often asking was allowed
    unsigned askedFor_ = 0;               ///< for which of these times the user has been asked
    AuthorizationListener* m_pListener_ = nullptr;
    std::int32_t m_nSignalsIgnoreCountActivated_ = 0;
    struct sigaction m_saOldAction_ {};  ///< of the end of a child, before the first start
};

}  // namespace brimvault::engine
