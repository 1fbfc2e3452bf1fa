#pragma once

#include <filesystem>
#include <memory>

namespace brimvault::platform {

/// The desktop's file browser. A request returns true once a file browser has accepted it. A call may block for
/// seconds: any thread but the main one, several at once.
class FileBrowser {
public:
    virtual ~FileBrowser() = default;

    /// Shows the item selected, in the folder that holds it.
    virtual bool showItem(const std::filesystem::path& path) = 0;
    /// Opens the file browser's window with the properties of the item.
    virtual bool showItemProperties(const std::filesystem::path& path) = 0;
    /// Opens a folder with the desktop's default program for folders.
    virtual bool openFolder(const std::filesystem::path& folder) = 0;

    /// Ends the calls under way, which then return false, and those that begin later.
    virtual void giveUp() = 0;

    /// The one of the session that the process belongs to.
    [[nodiscard]] static std::unique_ptr<FileBrowser> ofSession();
};

}  // namespace brimvault::platform
