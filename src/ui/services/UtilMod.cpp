#include "ui/services/UtilMod.h"

#include <QUrl>

#include "files/NodeStatus.h"
#include "platform/LibraryURLs.h"
#include "platform/text/DisplayText.h"
#include "ui/services/InfoWindow.h"

namespace brimvault::ui {

using platform::LibraryURLs;

namespace {

constexpr int concurrentRequests = 16;  // they wait more than they work

UtilMod* shared = nullptr;

std::string escaped(const QString& text) { return QUrl::toPercentEncoding(text).toStdString(); }

}  // namespace

std::string MailMessage::url() const {
    QString lines = body;
    lines.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));  // as mails have them
    const std::string to = QUrl::toPercentEncoding(recipient, "@").toStdString();
    return "mailto:" + to + "?SUBJECT=" + escaped(subject) + "&BODY=" + escaped(lines);
}

UtilMod::UtilMod(AlertPresenter& alerts, platform::FileBrowser& fileBrowser, platform::Workspace& workspace,
                 platform::FinderPreferences& finder, engine::PrivilegedRemover& remover,
                 engine::RemovalHistory& history)
    : notices_(alerts),
      fileBrowser_(fileBrowser),
      workspace_(workspace),
      finder_(finder),
      history_(history),
      requests_(concurrentRequests),
      files_(notices_, fileBrowser, requests_),
      removal_(notices_, remover, history),
      trashMoves_(notices_) {
    if (shared == nullptr) {
        shared = this;
    }
}

UtilMod::~UtilMod() {
    if (shared == this) {
        shared = nullptr;
    }
}

UtilMod& UtilMod::sharedUtil() {
    Q_ASSERT(shared != nullptr);
    return *shared;
}

// The size is still being counted for a window of information that is open; nobody will see it.
void UtilMod::waitUntilIdle() {
    if (notices_.window() != nullptr) {
        qDeleteAll(notices_.window()->findChildren<InfoWindow*>());
    }
    fileBrowser_.giveUp();
    workspace_.giveUp();
    requests_.waitUntilIdle();
    removal_.waitUntilIdle();
    trashMoves_.waitUntilIdle();
}

void UtilMod::composeMail(const MailMessage& mail) {
    requests_.call<bool>([&workspace = workspace_, url = mail.url()] { return workspace.openURL(url); },
                         [this, recipient = mail.recipient](bool opened) {
                             if (!opened) {
                                 notices_.show(
                                     tr("Can't open a mail program"),
                                     recipient.isEmpty()
                                         ? tr("No program for mail answers.")
                                         : tr("No program for mail answers. The address is %1").arg(recipient));
                             }
                         });
}

void UtilMod::showHistory() {
    enum class Answer { opened, nothingWritten, nobodyAnswers };
    const auto open = [&workspace = workspace_, &history = history_] {
        (void)history.waitUntilWritten();
        const auto file = history.file().native();
        const auto status = files::statusOf(file);
        if (!status || status->kind != files::NodeKind::regular) {
            return Answer::nothingWritten;
        }
        const auto url = "file://" + QByteArray::fromStdString(file).toPercentEncoding("/").toStdString();
        return workspace.openURL(url) ? Answer::opened : Answer::nobodyAnswers;
    };
    requests_.call<Answer>(open, [this](Answer answer) {
        if (answer == Answer::nothingWritten) {
            notices_.show(tr("There is no history yet"),
                          tr("What Brimvault removes, and what it could not remove, will be listed there."));
        } else if (answer == Answer::nobodyAnswers) {
            notices_.show(tr("Can't show the history"), tr("No program for text files answers. The history is in %1")
                                                            .arg(platform::displayText(history_.file())));
        }
    });
}

void UtilMod::announceStart() {
    requests_.call([&workspace = workspace_] { workspace.announceStart(); });
}

void UtilMod::doRemoveFile(const std::filesystem::path& path, const std::function<void(bool success)>& finished,
                           const std::shared_ptr<const engine::FoundIn>& foundIn) {
    removal_.remove(FileActions::standardized(path), foundIn, finished);
}

void UtilMod::doRemoveItem(const std::shared_ptr<const engine::FFItem>& item, const std::filesystem::path& path,
                           const std::function<void(bool success)>& finished, std::optional<engine::Section> section) {
    removal_.removeItem(item, FileActions::standardized(path), finished, section);
}

// To resolve a folder may block as long as the disk does.
void UtilMod::lookUpFolders() {
    requests_.call<KnownFolders>(
        [] {
            return KnownFolders{LibraryURLs::getDownloadsFolderURL(), LibraryURLs::getCachesFolderURL(),
                                LibraryURLs::getTrashFolderURL()};
        },
        [this](const KnownFolders& folders) { folders_ = folders; });
}

std::filesystem::path UtilMod::getFullPathToItem(const engine::FFItem& item,
                                                 const std::optional<std::filesystem::path>& folder) {
    if (auto location = item.location(); !location.empty()) {
        return location;
    }
    return folder ? *folder / item.pfname() : std::filesystem::path();
}

}  // namespace brimvault::ui
