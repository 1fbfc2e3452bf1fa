#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/Authorization.h"
#include "platform/ChildSignals.h"

namespace brimvault::engine {

/// Hears what becomes of the administrator's rights, on the thread that asks for them.
class AuthorizationListener {
public:
    virtual ~AuthorizationListener() = default;
    virtual void onAuthorizationComplete() = 0;
    virtual void onAuthorizationFailed() = 0;
    virtual void onDeAuthorizationComplete() = 0;
    virtual void onCommadExecuteSuccess() = 0;
    virtual void onCommadExecuteFailure() = 0;
};

/// Obtains the administrator's rights from the user, and starts programs with them; `platform` makes the system calls.
///
/// `setIsNeedAskAuthentication`, `giveUpAsking` and `stopToken` may be called by any thread; all else by one thread at
/// a time, and not by the main thread, since it blocks: the Remover sees to that.
class AuthorizationManager {
public:
    using ToolPaths = std::vector<std::filesystem::path>;
    /// Ignored; kept for callers.
    using CommandType = int;

    explicit AuthorizationManager(platform::AuthorizationFactory factory = platform::Authorization::create);
    AuthorizationManager(const AuthorizationManager&) = delete;
    AuthorizationManager& operator=(const AuthorizationManager&) = delete;
    ~AuthorizationManager() { deauthenticate(); }

    /// The process-wide instance, for the system that the process runs on.
    static AuthorizationManager& GetInstance();

    /// Whether the next request for rights may ask the user: false at first, and again after a failure or a refusal.
    /// However often rights are needed, the user is asked at most once for each time that this was set to true.
    void setIsNeedAskAuthentication(bool isNeeded);
    [[nodiscard]] bool m_bIsNeedAskAuthentication() const { return m_bIsNeedAskAuthentication_; }
    /// Withdraws an open question, which counts as refused, and allows none until `setIsNeedAskAuthentication`.
    void giveUpAsking();

    /// The stop that `giveUpAsking` requests, for what is begun until then. The functions that take it answer false
    /// from then on.
    [[nodiscard]] std::stop_token stopToken();

    /// Whether the rights for the tools are held already; asks nobody. False for no tools.
    [[nodiscard]] bool isAuthenticated(const ToolPaths& tools, const std::stop_token& stop = {});
    /// Whether they are held or, where asking is allowed, could be obtained.
    [[nodiscard]] bool authenticate(const ToolPaths& tools, const std::stop_token& stop = {});
    /// Asks the user. True if the question was put, whatever the answer.
    bool fetchPassword(const ToolPaths& tools);
    /// Gives the rights back. The destructor does so too.
    void deauthenticate();
    /// Starts the tool with the administrator's rights and at most 19 arguments, and does not wait for it. True if it
    /// was started.
    [[nodiscard]] bool executeCommand(const std::filesystem::path& tool, const std::vector<std::string>& withArgs,
                                      CommandType andType, const std::stop_token& stop = {});
    /// Whether the tool that was started last still runs. Reaps it if it has ended.
    [[nodiscard]] bool isToolRunning();

    // --- Kept for callers outside of the window: nothing in src calls these ---

    /// Makes the process ignore the end of its children until `stopIgnoreChildsSignals` was called as often. False if
    /// that failed.
    bool startIgnoreChildsSignals();
    /// Always true.
    bool stopIgnoreChildsSignals();
    /// None at first. The listener outlives the manager, or is reset before.
    void setListener(AuthorizationListener* listener) { m_pListener_ = listener; }

private:
    /// Null where the system gives rights to nobody.
    [[nodiscard]] platform::Authorization* authorizationRef();
    void notify(void (AuthorizationListener::*message)());

    const platform::AuthorizationFactory factory_;
    std::unique_ptr<platform::Authorization> m_pAuthorizationRef_;  ///< made when it is first needed
    std::atomic<bool> m_bIsNeedAskAuthentication_ = false;
    std::atomic<unsigned> timesAllowed_ = 0;  ///< how often asking was allowed
    unsigned askedFor_ = 0;                   ///< for which of these times the user has been asked
    std::mutex questionMutex_;                ///< protects `question_` and `stop_`
    std::stop_source question_;               ///< withdraws the question that is open; stopped while none may be asked
    std::stop_source stop_;                   ///< stopped by `giveUpAsking` alone
    AuthorizationListener* m_pListener_ = nullptr;
    std::int32_t m_nSignalsIgnoreCountActivated_ = 0;
    std::unique_ptr<platform::ChildSignalAction> m_saOldAction_;  ///< of before the first start
};

}  // namespace brimvault::engine
