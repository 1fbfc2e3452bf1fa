#pragma once

#include <memory>
#include <string>

namespace brimvault::platform {

/// The desktop session, without its file browser. A call may block for seconds: any thread but the main one, several at
/// once.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens an escaped URL (mailto:, say) with the desktop's default program for its scheme. True once that program
    /// has taken it.
    virtual bool openURL(const std::string& url) = 0;
    /// Broadcasts to the maker's other applications that this one has started. Nobody need listen.
    virtual void announceStart() = 0;

    /// Ends the calls under way, which then return false, and those that begin later.
    virtual void giveUp() = 0;

    /// The one of the session that the process belongs to.
    [[nodiscard]] static std::unique_ptr<Workspace> ofSession();
};

}  // namespace brimvault::platform
