#pragma once

#include <memory>
#include <string>

namespace brimvault::platform {

/// The desktop session around the program, but for its file browser. A call may block for seconds: any thread but the
/// main one, several at once.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens an address (an escaped URL: of a mail, say) with the desktop's default program for its kind. YES once
    /// someone has taken it.
    virtual bool openURL(const std::string& url) = 0;
    /// Tells the maker's other applications that this one has started. Who listens, and whether anyone does, is not
    /// known.
    virtual void announceStart() = 0;

    /// Ends the calls under way, which then answer NO, and lets no other begin.
    virtual void giveUp() = 0;

    /// That of the session which the process belongs to.
    [[nodiscard]] static std::unique_ptr<Workspace> ofSession();
};

}  // namespace brimvault::platform
