#include "engine/removal/AuthorizationManager.h"

#include <algorithm>

namespace brimvault::engine {

namespace {

constexpr std::size_t maxRights = 20;
constexpr std::size_t maxArguments = 19;
constexpr std::size_t maxPathLength = 127;  // a longer path would be truncated, and name another program

// One for each of the first tools; empty if the path of one is too long.
std::vector<platform::RightItem> rightsFor(const AuthorizationManager::ToolPaths& tools) {
    std::vector<platform::RightItem> rights;
    for (const auto& tool : tools) {
        if (rights.size() == maxRights) {
            break;
        }
        if (tool.native().size() > maxPathLength) {
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
    const std::lock_guard guard(questionMutex_);
    if (isNeeded) {
        ++timesAllowed_;
        question_.request_stop();  // one of the clean before
    }
    if (question_.stop_requested()) {
        question_ = std::stop_source();
    }
    if (stop_.stop_requested()) {
        stop_ = std::stop_source();
    }
    m_bIsNeedAskAuthentication_ = isNeeded;
}

void AuthorizationManager::giveUpAsking() {
    m_bIsNeedAskAuthentication_ = false;
    const std::lock_guard guard(questionMutex_);
    question_.request_stop();
    stop_.request_stop();
}

std::stop_token AuthorizationManager::stopToken() {
    const std::lock_guard guard(questionMutex_);
    return stop_.get_token();
}

platform::Authorization* AuthorizationManager::authorizationRef() {
    if (!m_pAuthorizationRef_) {
        m_pAuthorizationRef_ = factory_();
    }
    return m_pAuthorizationRef_.get();
}

bool AuthorizationManager::isAuthenticated(const ToolPaths& tools, const std::stop_token& stop) {
    auto* reference = authorizationRef();
    const auto rights = rightsFor(tools);
    return reference != nullptr && !rights.empty() &&
           reference->copyRights(rights, platform::Interaction::none, stop) && !stop.stop_requested();
}

bool AuthorizationManager::authenticate(const ToolPaths& tools, const std::stop_token& stop) {
    if (isAuthenticated(tools, stop)) {
        return true;
    }
    if (stop.stop_requested() || !m_bIsNeedAskAuthentication_ || askedFor_ == timesAllowed_) {
        return false;
    }
    fetchPassword(tools);
    return isAuthenticated(tools, stop);
}

// The user is asked once in a clean, whatever the answer: `askedFor_` remembers for which clean, since a right that the
// system lets expire would otherwise bring a second question. A question that is still open when the next clean begins
// is withdrawn, and its answer does not count for that clean.
bool AuthorizationManager::fetchPassword(const ToolPaths& tools) {
    if (tools.empty()) {
        return false;
    }
    std::unique_lock guard(questionMutex_);
    const unsigned clean = askedFor_ = timesAllowed_;
    const auto stop = question_.get_token();
    guard.unlock();
    auto* reference = authorizationRef();
    const auto rights = rightsFor(tools);
    const bool granted =
        reference != nullptr && !rights.empty() && reference->copyRights(rights, platform::Interaction::allowed, stop);
    if (!granted && clean == timesAllowed_) {
        m_bIsNeedAskAuthentication_ = false;
    }
    notify(granted ? &AuthorizationListener::onAuthorizationComplete : &AuthorizationListener::onAuthorizationFailed);
    return true;
}

void AuthorizationManager::deauthenticate() {
    if (m_pAuthorizationRef_) {
        m_pAuthorizationRef_->destroyRights();
        m_pAuthorizationRef_.reset();
        notify(&AuthorizationListener::onDeAuthorizationComplete);
    }
}

bool AuthorizationManager::executeCommand(const std::filesystem::path& tool, const std::vector<std::string>& withArgs,
                                          CommandType /*andType*/, const std::stop_token& stop) {
    if (!authenticate({tool}, stop)) {
        return false;
    }
    const auto count = static_cast<std::ptrdiff_t>(std::min(withArgs.size(), maxArguments));
    const std::vector<std::string> arguments(withArgs.begin(), withArgs.begin() + count);
    const bool started = m_pAuthorizationRef_->executeWithPrivileges(tool, arguments);
    if (!started) {
        m_bIsNeedAskAuthentication_ = false;  // where the start asks, the user has refused
    }
    notify(started ? &AuthorizationListener::onCommadExecuteSuccess : &AuthorizationListener::onCommadExecuteFailure);
    return started;
}

bool AuthorizationManager::isToolRunning() { return m_pAuthorizationRef_ && m_pAuthorizationRef_->isToolRunning(); }

bool AuthorizationManager::startIgnoreChildsSignals() {
    if (m_nSignalsIgnoreCountActivated_ == 0) {
        m_saOldAction_ = platform::ignoreChildSignals();
        if (!m_saOldAction_) {
            return false;
        }
    }
    ++m_nSignalsIgnoreCountActivated_;
    return true;
}

bool AuthorizationManager::stopIgnoreChildsSignals() {
    if (m_nSignalsIgnoreCountActivated_ > 1 || (m_nSignalsIgnoreCountActivated_ == 1 && m_saOldAction_->restore())) {
        --m_nSignalsIgnoreCountActivated_;
    }
    return true;
}

void AuthorizationManager::notify(void (AuthorizationListener::*message)()) {
    if (m_pListener_ != nullptr) {
        (m_pListener_->*message)();
    }
}

}  // namespace brimvault::engine
