#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "engine/removal/AuthorizationManager.h"
#include "engine/removal/PrivilegedRemover.h"
#include "engine/removal/RootRemover.h"

namespace brimvault::engine {

/// Lets a root remover, a small program with the administrator's rights, remove what the user may not. It is started
/// when it is first needed and used from then on; one that has ended is replaced by another, under another name.
///
/// Any thread but the main one: requests wait for each other, for the user's password, and for the removal itself.
/// After `stopAskingUser` a request that has waited until then removes nothing, nor does a new one before
/// `allowAskingUser`.
class Remover final : public PrivilegedRemover {
public:
    /// The manager outlives the remover.
    struct Dependencies {
        AuthorizationManager& authorization;
        std::filesystem::path tool;
        /// Connects with the root remover that listens under the name; null if none does.
        std::function<std::unique_ptr<platform::ToolConnection>(const std::string& name)> connect;
        std::function<void(std::chrono::milliseconds)> sleep;
    };
    explicit Remover(Dependencies dependencies);

    /// The process-wide instance, for the system that the process runs on.
    static Remover& GetInstance();

    void allowAskingUser() override { dependencies_.authorization.setIsNeedAskAuthentication(true); }
    void stopAskingUser() override { dependencies_.authorization.giveUpAsking(); }
    bool removeFileAtPath(const std::filesystem::path& path, const Holder& folder) override {
        return removeAsRootFileAtPath(path, folder);
    }
    [[nodiscard]] bool removeAsRootFileAtPath(const std::filesystem::path& path, const Holder& folder = {});

    /// Stops the requests that wait, disconnects from the root remover, which then ends, and gives the rights back.
    /// Before the end of the process.
    void giveUp();

    /// "com.quorvel.brimvault.BrimvaultCleaner." and a number between 100000 and 999998.
    [[nodiscard]] static std::string generateRootRemoverServerName();

    // --- Kept for callers outside of the window: nothing in src calls these ---

    /// Moves the item into the user's trash and answers where it is now; none if it was not moved.
    [[nodiscard]] std::optional<std::filesystem::path> recycleFileAtPath(const std::filesystem::path& path) {
        return recycleAsRootPath(path);
    }
    [[nodiscard]] std::optional<std::filesystem::path> recycleAsRootPath(const std::filesystem::path& path);

private:
    using Duration = std::chrono::milliseconds;

    /// Null after a stop too.
    [[nodiscard]] RootRemover* getRootRemover(const std::stop_token& stop);
    [[nodiscard]] RootRemover* getConnectedRootRemover();
    [[nodiscard]] RootRemover* createNewRootRemover(const std::stop_token& stop);

    const Dependencies dependencies_;
    static constexpr std::chrono::seconds m_nMaxTimeWait{5};  ///< timeout for a started root remover to listen
    std::mutex mutex_;                                        ///< protects what follows, and the manager
    std::string m_sRootRemoverServerName_ = generateRootRemoverServerName();
    std::unique_ptr<RootRemover> rootRemover_;  ///< the last one that was connected with under that name
    bool knowsProtectedFolders_ = false;        ///< it has been sent the folders that it must keep
};

}  // namespace brimvault::engine
