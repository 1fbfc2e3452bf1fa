#include "engine/removal/Remover.h"

#include <QCoreApplication>
#include <random>
#include <thread>

#include "cleaner-tool/protocol/SocketPath.h"
#include "engine/removal/ProtectedFolders.h"

namespace brimvault::engine {

namespace {

constexpr std::chrono::milliseconds pollInterval{100};

}  // namespace

Remover::Remover(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

Remover& Remover::GetInstance() {
    static Remover instance(
        {AuthorizationManager::GetInstance(), platform::rootRemoverPath(),
         [](const std::string& name) { return platform::ToolConnection::connect(cleaner::socketFolder() / name); },
         [](Duration duration) { std::this_thread::sleep_for(duration); }});
    return instance;
}

// One number fewer than there are of six digits: 999999 never comes.
std::string Remover::generateRootRemoverServerName() {
    constexpr std::uint32_t numbers = 899'999;
    constexpr std::uint32_t first = 100'000;
    static_assert(sizeof(std::random_device::result_type) >= sizeof numbers);
    return std::string(cleaner::socketNamePrefix) + std::to_string(std::random_device()() % numbers + first);
}

// The stop is that of the time when the request comes, not of the time when it has waited for the others.
bool Remover::removeAsRootFileAtPath(const std::filesystem::path& path, const Holder& folder) {
    const auto stop = dependencies_.authorization.stopToken();
    const std::lock_guard guard(mutex_);
    auto* remover = getRootRemover(stop);
    return remover != nullptr && remover->removeFileAtPath(path, folder);
}

std::optional<std::filesystem::path> Remover::recycleAsRootPath(const std::filesystem::path& path) {
    const auto stop = dependencies_.authorization.stopToken();
    const std::lock_guard guard(mutex_);
    auto* remover = getRootRemover(stop);
    return remover == nullptr ? std::nullopt : remover->removeToTrashFileAtPath(path);
}

void Remover::giveUp() {
    stopAskingUser();
    const std::lock_guard guard(mutex_);
    rootRemover_.reset();
    dependencies_.authorization.deauthenticate();
}

RootRemover* Remover::getRootRemover(const std::stop_token& stop) {
    if (stop.stop_requested()) {
        return nullptr;
    }
    auto* connected = getConnectedRootRemover();
    auto* remover = connected != nullptr ? connected : createNewRootRemover(stop);
    return stop.stop_requested() ? nullptr : remover;
}

// The root remover accepts one client, once. So the connection is kept, and another is tried only after it has ended.
RootRemover* Remover::getConnectedRootRemover() {
    if (!rootRemover_ || !rootRemover_->isConnected()) {
        auto connection = dependencies_.connect(m_sRootRemoverServerName_);
        rootRemover_ = connection ? std::make_unique<RootRemover>(std::move(connection)) : nullptr;
        knowsProtectedFolders_ = false;
    }
    if (!rootRemover_ || !rootRemover_->respondsToRemoveFileAtPath()) {
        return nullptr;
    }
    if (!knowsProtectedFolders_) {
        for (const auto& folder : protectedFolders()) {
            rootRemover_->keepFolderAtPath(folder);
        }
        knowsProtectedFolders_ = true;
    }
    return rootRemover_.get();
}

RootRemover* Remover::createNewRootRemover(const std::stop_token& stop) {
    (void)dependencies_.authorization.isToolRunning();  // reaps one that has ended
    m_sRootRemoverServerName_ = generateRootRemoverServerName();
    rootRemover_.reset();
    const std::vector<std::string> arguments = {m_sRootRemoverServerName_,
                                                std::to_string(QCoreApplication::applicationPid())};
    if (!dependencies_.authorization.executeCommand(dependencies_.tool, arguments, 0, stop)) {
        return nullptr;
    }
    for (Duration waited{}; waited < m_nMaxTimeWait && !stop.stop_requested(); waited += pollInterval) {
        if (auto* connected = getConnectedRootRemover()) {
            return connected;
        }
        if (!dependencies_.authorization.isToolRunning()) {
            break;  // it has ended, and will not listen
        }
        dependencies_.sleep(pollInterval);
    }
    return getConnectedRootRemover();
}

}  // namespace brimvault::engine
