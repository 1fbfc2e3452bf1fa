#pragma once

#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/model/FileFacts.h"
#include "engine/removal/ItemRemoval.h"
#include "platform/FileBrowser.h"
#include "platform/FinderPreferences.h"
#include "platform/Workspace.h"
#include "ui/controls/AlertPresenter.h"
#include "ui/services/MailMessage.h"

namespace brimvault::ui {

/// What the window has done outside of it: items are shown in the file browser, with what is known of them, single
/// items are removed, mails are begun. Main thread; what may block is done on threads of its own, and answers come
/// later on the main thread.
class UtilMod final : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    UtilMod(AlertPresenter& alerts, platform::FileBrowser& fileBrowser, platform::Workspace& workspace,
            platform::FinderPreferences& finder = platform::FinderPreferences::shared(),
            engine::PrivilegedRemover& remover = engine::PrivilegedRemover::none());
    ~UtilMod() override;
    /// The one of the process, for the desktop that it runs on.
    static UtilMod& sharedUtil();

    /// The window over which alerts and information are shown.
    void setWindow(QWidget* window) { window_ = window; }
    /// Before the window goes: gives up what is asked of the file browser, and blocks until no removal is under way.
    /// What a dead volume holds, removals as well, is left behind after a moment.
    void waitUntilIdle();

    /// Shows the file selected in the file browser; where none answers, opens the folder that holds it.
    void doRevealInFinder(const std::filesystem::path& path);
    /// Shows what is known of the file, in the file browser's window or, where none answers, in one of our own.
    void doGetInformation(const std::filesystem::path& path);
    /// Looked for on a thread of their own.
    using Folders = std::function<std::vector<std::filesystem::path>()>;
    /// Of several folders, does so for the first that is there: opens it in the file browser, or shows what is known.
    void openFirstFolder(Folders folders);
    void getInformationOfFirstFolder(Folders folders);
    void alertFileNotExists(const std::filesystem::path& path);
    /// Opens a new mail in the user's mail program; where there is none, says so.
    void composeMail(const MailMessage& mail);
    /// Tells the maker's other applications that this one has started.
    void announceStart();

    /// Whether the user, being asked, wants the item at the path to be removed for good; a number of other items that
    /// are listed may lie in it, and go with it.
    [[nodiscard]] bool isRemovalConfirmed(const std::filesystem::path& path, qsizetype itemsInIt);
    /// Removes the file for good and then, after an alert where it failed, posts "singleFileRemoveFinished" and tells
    /// whether it is gone. A file that was gone before counts as removed. One that a scan has found goes from where it
    /// was found, or not at all.
    void doRemoveFile(const std::filesystem::path& path, const std::function<void(bool success)>& finished,
                      const std::shared_ptr<const engine::FoundIn>& foundIn = nullptr);

    /// A single item is being removed, or hangs.
    [[nodiscard]] bool isRemovalUnderWay() const { return removalsUnderWay_ > 0; }

    /// The item's own path, or that of its name in the folder; empty without either.
    [[nodiscard]] static std::filesystem::path getFullPathToItem(const engine::FFItem& item,
                                                                 const std::optional<std::filesystem::path>& folder);
    [[nodiscard]] static std::filesystem::path getFullDownloadPathToItem(const engine::FFItem& item);
    [[nodiscard]] static std::filesystem::path getFullCachePathToItem(const engine::FFItem& item);
    [[nodiscard]] static std::filesystem::path getFullTrashPathToItem(const engine::FFItem& item);
    /// The item's own path; logs lie in several folders.
    [[nodiscard]] static std::filesystem::path getFullLogsPathToItem(const engine::FFItem& item);

    [[nodiscard]] std::optional<std::filesystem::path> GetFinderPrefPath() { return finder_.GetFinderPrefPath(); }
    [[nodiscard]] bool isHiddenFilesVisibleInFinder() { return finder_.isHiddenFilesVisibleInFinder(); }

private:
    void tell(const QString& message, const QString& informativeText);
    void withFirst(Folders folders, std::function<void(const std::filesystem::path&)> then);
    void showWith(const std::filesystem::path& path, std::function<bool(const std::filesystem::path&)> show);
    void showInformation(const std::filesystem::path& path);
    void openInfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts);
    void finishRemoval(const std::filesystem::path& path, const engine::ItemRemoval& removal,
                       const std::function<void(bool success)>& finished);

    /// Calls `work` on a thread of a pool and `done`, with what it answered, on the main thread.
    template <typename Answer>
    void inBackground(QThreadPool& pool, std::function<Answer()> work, std::function<void(const Answer&)> done);

    AlertPresenter& alerts_;
    platform::FileBrowser& fileBrowser_;
    platform::Workspace& workspace_;
    platform::FinderPreferences& finder_;
    engine::PrivilegedRemover& remover_;
    QPointer<QWidget> window_;
    // Each is left behind when it hangs.
    QThreadPool* requests_;  ///< what may wait for others: a removal does not wait for them
    QThreadPool* removals_;
    int removalsUnderWay_ = 0;
};

}  // namespace brimvault::ui
