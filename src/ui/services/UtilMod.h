#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/model/FFItem.h"
#include "platform/FinderPreferences.h"
#include "platform/Workspace.h"
#include "ui/services/BackgroundCalls.h"
#include "ui/services/FileActions.h"
#include "ui/services/SingleRemoval.h"
#include "ui/services/TrashMoves.h"
#include "ui/services/WindowNotices.h"

namespace brimvault::ui {

/// A mail for the user's mail program, where the user reads it before it is sent. A value.
struct MailMessage {
    QString recipient;  ///< empty to let the user choose
    QString subject;
    QString body;  ///< lines end with "\n"

    /// A "mailto:" URL, each part percent-escaped in UTF-8.
    [[nodiscard]] std::string url() const;
};

/// Acts outside of the window for it: shows files (`FileActions`), removes single items (`SingleRemoval`), begins
/// mails. Main thread; what may block is called on other threads, and answers come later on the main thread.
class UtilMod final : public QObject {
    Q_OBJECT

public:
    /// All of them must outlive this object.
    UtilMod(AlertPresenter& alerts, platform::FileBrowser& fileBrowser, platform::Workspace& workspace,
            platform::FinderPreferences& finder = platform::FinderPreferences::shared(),
            engine::PrivilegedRemover& remover = engine::PrivilegedRemover::none(),
            engine::RemovalHistory& history = engine::RemovalHistory::none());
    ~UtilMod() override;
    /// The process-wide instance: the first that was made, which must still exist.
    static UtilMod& sharedUtil();

    /// The window over which alerts and information are shown.
    void setWindow(QWidget* window) { notices_.setWindow(window); }
    /// Before the window goes: gives up what is asked of the desktop, and blocks until no removal is under way. What
    /// hangs, removals as well, is left behind after a second.
    void waitUntilIdle();

    /// Shows the file selected in the file browser; where none answers, opens the folder that holds it.
    void doRevealInFinder(const std::filesystem::path& path) { files_.reveal(path); }
    /// Shows what is known of the file, in the file browser's window or, where none answers, in one of our own.
    void doGetInformation(const std::filesystem::path& path, const ToldOfFile& told = {}) {
        files_.showInformation(path, told);
    }
    /// Of several folders, does so for the first that exists: opens it in the file browser, or shows what is known.
    void openFirstFolder(FileActions::Folders folders) { files_.openFirst(std::move(folders)); }
    void getInformationOfFirstFolder(FileActions::Folders folders) {
        files_.showInformationOfFirst(std::move(folders));
    }
    void alertFileNotExists(const std::filesystem::path& path) { files_.alertFileNotExists(path); }
    /// Opens a new mail in the user's mail program; where there is none, says so.
    void composeMail(const MailMessage& mail);
    /// Opens the history of what was removed with the desktop's default program, or says why it cannot.
    void showHistory();
    [[nodiscard]] engine::RemovalHistory& history() { return history_; }
    /// Tells the maker's other applications that this one has started.
    void announceStart();

    /// Whether the user, being asked, wants the item at the path to be removed for good; a number of other items that
    /// are listed may lie in it, and go with it.
    [[nodiscard]] bool isRemovalConfirmed(const std::filesystem::path& path, qsizetype itemsInIt) const {
        return removal_.askToConfirm(path, itemsInIt);
    }
    /// Removes the file for good and then, after an alert where it failed, posts "singleFileRemoveFinished" and calls
    /// `finished` with whether it is gone. A file that was gone before counts as removed. One that a scan has found is
    /// removed from where it was found, or not at all.
    void doRemoveFile(const std::filesystem::path& path, const std::function<void(bool success)>& finished,
                      const std::shared_ptr<const engine::FoundIn>& foundIn = nullptr);
    /// The same of an item, whose path is given: of one that stands for several things, these are removed and named.
    [[nodiscard]] bool isRemovalConfirmed(const engine::FFItem& item, const std::filesystem::path& path,
                                          const engine::ItemArray& goingWithIt) const {
        return removal_.askToConfirm(item, path, goingWithIt);
    }
    void doRemoveItem(const std::shared_ptr<const engine::FFItem>& item, const std::filesystem::path& path,
                      const std::function<void(bool success)>& finished,
                      std::optional<engine::Section> section = std::nullopt);
    /// Items that the user moves to the Trash, and back.
    [[nodiscard]] TrashMoves& trashMoves() { return trashMoves_; }
    /// Whether a removal or a move to the Trash has not returned yet, or hangs.
    [[nodiscard]] bool isRemovalUnderWay() const { return removal_.isUnderWay() || trashMoves_.isUnderWay(); }

    /// Looks up the folders of the sections, for items that are known by their names alone. The answers come later.
    void lookUpFolders();
    /// The item's own path, or that of its name in the folder; empty without either.
    [[nodiscard]] static std::filesystem::path getFullPathToItem(const engine::FFItem& item,
                                                                 const std::optional<std::filesystem::path>& folder);
    // In the folders as they were looked up last: the disk is not asked.
    [[nodiscard]] std::filesystem::path getFullDownloadPathToItem(const engine::FFItem& item) const {
        return getFullPathToItem(item, folders_.downloads);
    }
    [[nodiscard]] std::filesystem::path getFullCachePathToItem(const engine::FFItem& item) const {
        return getFullPathToItem(item, folders_.caches);
    }
    [[nodiscard]] std::filesystem::path getFullTrashPathToItem(const engine::FFItem& item) const {
        return getFullPathToItem(item, folders_.trash);
    }
    /// The item's own path; logs lie in several folders.
    [[nodiscard]] static std::filesystem::path getFullLogsPathToItem(const engine::FFItem& item) {
        return item.pfpath();
    }

    [[nodiscard]] std::optional<std::filesystem::path> GetFinderPrefPath() { return finder_.GetFinderPrefPath(); }
    [[nodiscard]] bool isHiddenFilesVisibleInFinder() { return finder_.isHiddenFilesVisibleInFinder(); }

private:
    /// None where the system names none, or none is known yet.
    struct KnownFolders {
        std::optional<std::filesystem::path> downloads;
        std::optional<std::filesystem::path> caches;
        std::optional<std::filesystem::path> trash;
    };

    WindowNotices notices_;
    platform::FileBrowser& fileBrowser_;
    platform::Workspace& workspace_;
    platform::FinderPreferences& finder_;
    engine::RemovalHistory& history_;
    KnownFolders folders_;
    BackgroundCalls requests_;  ///< to the desktop and the disk; a removal does not wait for them
    FileActions files_;
    SingleRemoval removal_;
    TrashMoves trashMoves_;
};

}  // namespace brimvault::ui
