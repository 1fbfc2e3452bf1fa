#include "engine/removal/AuthorizationManager.h"

#include <algorithm>

namespace brimvault::engine {

namespace {

constexpr std::size_t mostRights = 20;
constexpr std::size_t mostArguments = 19;
constexpr std::size_t longestPath = 127;  // a longer one would be asked for cut off, and be another program's

// One for each of the first tools. None when one of them cannot be asked for.
std::vector<platform::RightItem> rightsFor(const AuthorizationManager::ToolPaths& tools) {
    std::vector<platform::RightItem> rights;
    for (const auto& tool : tools) {
        if (rights.size() == mostRights) {
            break;
        }
        if (tool.native().size() > longestPath) {
            return {};
        }
        rights.push_back({"system.privilege.admin", tool});
    }
    return rights;
}

}  // namespace

AuthorizationManager::AuthorizationManager(platform::AuthorizationFactory factory) : factory_(std::move(factory)) {}

AuthorizationManager& AuthorizationManager::GetInstance() {
    static AuthorizationManager instance;
    return instance;
}

void AuthorizationManager::setIsNeedAskAuthentication(bool isNeeded) {
    if (isNeeded) {
        ++timesLet_;
    }
    isAskingGivenUp_ = false;
    m_bIsNeedAskAuthentication_ = isNeeded;
}

void AuthorizationManager::giveUpAsking() {
    m_bIsNeedAskAuthentication_ = false;
    isAskingGivenUp_ = true;
}

platform::Authorization* AuthorizationManager::authorizationRef() {
    if (!m_pAuthorizationRef_) {
        m_pAuthorizationRef_ = factory_();
    }
    return m_pAuthorizationRef_.get();
}

bool AuthorizationManager::isAuthenticated(const ToolPaths& tools) {
    auto* reference = authorizationRef();
    const auto rights = rightsFor(tools);
    return reference != nullptr && !rights.empty() && reference->copyRights(rights, platform::Interaction::none, {});
}

bool AuthorizationManager::authenticate(const ToolPaths& tools) {
    if (isAuthenticated(tools)) {
        return true;
    }
    if (!m_bIsNeedAskAuthentication_ || askedFor_ == timesLet_) {
        return false;
    }
    fetchPassword(tools);
    return isAuthenticated(tools);
}

// What was granted is kept as long as the system keeps it, and once that is over another question would be the second
// one for the same clean: that is what is kept of it, whatever the answer. A question that is still open when the next
// clean begins is withdrawn, and its answer says nothing of that clean's.
bool AuthorizationManager::fetchPassword(const ToolPaths& tools) {
    if (tools.empty()) {
        return false;
    }
    const unsigned let = askedFor_ = timesLet_;
    auto* reference = authorizationRef();
    const auto rights = rightsFor(tools);
    const bool granted = reference != nullptr && !rights.empty() &&
                         reference->copyRights(rights, platform::Interaction::allowed,
                                               [this, let] { return isAskingGivenUp_ || let != timesLet_; });
    if (!granted && let == timesLet_) {
        m_bIsNeedAskAuthentication_ = false;
    }
    tell(granted ? &AuthorizationListener::onAuthorizationComplete : &AuthorizationListener::onAuthorizationFailed);
    return true;
}

void AuthorizationManager::deauthenticate() {
    if (m_pAuthorizationRef_) {
        m_pAuthorizationRef_->destroyRights();
        m_pAuthorizationRef_.reset();
        tell(&AuthorizationListener::onDeAuthorizationComplete);
    }
}

bool AuthorizationManager::executeCommand(const std::filesystem::path& tool, const std::vector<std::string>& withArgs,
                                          CommandType /*andType*/) {
    if (!authenticate({tool})) {
        return false;
    }
    const auto count = static_cast<std::ptrdiff_t>(std::min(withArgs.size(), mostArguments));
    const std::vector<std::string> arguments(withArgs.begin(), withArgs.begin() + count);
    const bool started = m_pAuthorizationRef_->executeWithPrivileges(tool, arguments);
    if (!started) {
        m_bIsNeedAskAuthentication_ = false;  // where the start asks, it was refused
    }
    tell(started ? &AuthorizationListener::onCommadExecuteSuccess : &AuthorizationListener::onCommadExecuteFailure);
    return started;
}

bool AuthorizationManager::isToolRunning() { return m_pAuthorizationRef_ && m_pAuthorizationRef_->isToolRunning(); }

bool AuthorizationManager::startIgnoreChildsSignals() {
    if (m_nSignalsIgnoreCountActivated_ == 0) {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigemptyset(&ignore.sa_mask);
        if (::sigaction(SIGCHLD, &ignore, &m_saOldAction_) != 0) {
            return false;
        }
    }
    ++m_nSignalsIgnoreCountActivated_;
    return true;
}

bool AuthorizationManager::stopIgnoreChildsSignals() {
    if (m_nSignalsIgnoreCountActivated_ > 1 ||
        (m_nSignalsIgnoreCountActivated_ == 1 && ::sigaction(SIGCHLD, &m_saOldAction_, nullptr) == 0)) {
        --m_nSignalsIgnoreCountActivated_;
    }
    return true;
}

void AuthorizationManager::tell(void (AuthorizationListener::*message)()) {
    if (m_pListener_ != nullptr) {
        (m_pListener_->*message)();
    }
}

}  // namespace brimvault::engine
