#pragma once

#include <filesystem>
#include <memory>

namespace brimvault::platform {

/// The desktop's file browser, asked to show something. YES once someone has taken the request. A call may block for
/// seconds: any thread but the main one, several at once.
class FileBrowser {
public:
    virtual ~FileBrowser() = default;

    /// Shows the item selected, in the folder that holds it.
    virtual bool showItem(const std::filesystem::path& path) = 0;
    /// Opens the file browser's own window with what is known of the item.
    virtual bool showItemProperties(const std::filesystem::path& path) = 0;
    /// Opens a folder with the desktop's default program for folders.
    virtual bool openFolder(const std::filesystem::path& folder) = 0;

    /// Ends the calls under way, which then answer NO, and lets no other begin.
    virtual void giveUp() = 0;

    /// That of the session which the process belongs to.
    [[nodiscard]] static std::unique_ptr<FileBrowser> ofSession();
};

}  // namespace brimvault::platform
