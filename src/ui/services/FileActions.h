#pragma once

#include <QCoreApplication>
#include <filesystem>
#include <functional>
#include <vector>

#include "engine/model/FileFacts.h"
#include "platform/FileBrowser.h"
#include "ui/services/BackgroundCalls.h"
#include "ui/services/WindowNotices.h"

namespace brimvault::ui {

/// What a list tells of a file.
struct ToldOfFile {
    QString note;
    quint64 bytes = 0;  ///< with a note
};

/// Shows files in the desktop's file browser, and what is known of them. Main thread; what may block is called on
/// threads of `calls`, and a failure is told later.
class FileActions {
    Q_DECLARE_TR_FUNCTIONS(FileActions)

public:
    /// Looked for on a thread of `calls`.
    using Folders = std::function<std::vector<std::filesystem::path>()>;

    /// All of them must outlive this object.
    FileActions(const WindowNotices& notices, platform::FileBrowser& fileBrowser, BackgroundCalls& calls)
        : notices_(notices), fileBrowser_(fileBrowser), calls_(calls) {}

    /// Shows the file selected; where no file browser answers, opens the folder that holds it.
    void reveal(const std::filesystem::path& path);
    /// Shows what is known of the file, in the file browser's window or, where none answers, in one of our own.
    /// With a note, which has no place in the file browser's window, always one of our own is shown.
    void showInformation(const std::filesystem::path& path, const ToldOfFile& told = {});
    /// Of several folders, does so for the first that exists: opens it in the file browser, or shows what is known.
    void openFirst(Folders folders);
    void showInformationOfFirst(Folders folders);
    void alertFileNotExists(const std::filesystem::path& path) const;

    /// A path without "~/", "." and "..". One that is not absolute stays so and names nothing: it is never resolved
    /// against the working directory.
    [[nodiscard]] static std::filesystem::path standardized(const std::filesystem::path& path);

private:
    void withFirst(Folders folders, std::function<void(const std::filesystem::path&)> then);
    void showWith(const std::filesystem::path& path, std::function<bool(const std::filesystem::path&)> show);
    void showOwnInformation(const std::filesystem::path& path, const ToldOfFile& told);
    void openInfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts, const ToldOfFile& told);

    const WindowNotices& notices_;
    platform::FileBrowser& fileBrowser_;
    BackgroundCalls& calls_;
};

}  // namespace brimvault::ui
