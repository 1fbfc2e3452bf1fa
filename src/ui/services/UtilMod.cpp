#include "ui/services/UtilMod.h"

#include <QFutureWatcher>
#include <QtConcurrentRun>
#include <algorithm>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/Remover.h"
#include "files/trees/Measure.h"
#include "platform/DisplayText.h"
#include "platform/LibraryURLs.h"
#include "scanners/SystemPathsGenerator.h"
#include "ui/controls/WindowAlerts.h"
#include "ui/services/InfoWindow.h"

namespace brimvault::ui {

using platform::LibraryURLs;

namespace {

constexpr int timeToGiveUp = 1000;      // milliseconds
constexpr int concurrentRequests = 16;  // they wait more than they work

enum class Request { taken, noSuchFile, nobodyAnswers };

// A path without "~/", "." and ".."; one that is not absolute stays so, and names nothing: where the program was
// started is no place that a list speaks of.
std::filesystem::path standardized(const std::filesystem::path& path) {
    return scanners::SystemPathsGenerator::shared().urlForPath(path).lexically_normal();
}

bool isThere(const std::filesystem::path& path) { return path.is_absolute() && files::statusOf(path); }

}  // namespace

UtilMod::UtilMod(AlertPresenter& alerts, platform::FileBrowser& fileBrowser, platform::Workspace& workspace,
                 platform::FinderPreferences& finder, engine::PrivilegedRemover& remover)
    : alerts_(alerts),
      fileBrowser_(fileBrowser),
      workspace_(workspace),
      finder_(finder),
      remover_(remover),
      requests_(new QThreadPool),
      removals_(new QThreadPool) {
    requests_->setMaxThreadCount(concurrentRequests);
    removals_->setMaxThreadCount(1);
}

UtilMod::~UtilMod() {
    for (auto* pool : {removals_, requests_}) {
        if (pool->waitForDone(timeToGiveUp)) {
            delete pool;  // its own end would wait for what hangs
        }
    }
}

UtilMod& UtilMod::sharedUtil() {
    static WindowAlerts alerts;
    static const auto fileBrowser = platform::FileBrowser::ofSession();
    static const auto workspace = platform::Workspace::ofSession();
    static UtilMod instance(alerts, *fileBrowser, *workspace, platform::FinderPreferences::shared(),
                            engine::Remover::GetInstance());
    return instance;
}

// A window of information that is open still has something counted, which nobody will see.
void UtilMod::waitUntilIdle() {
    if (window_) {
        qDeleteAll(window_->findChildren<InfoWindow*>());
    }
    fileBrowser_.giveUp();
    workspace_.giveUp();
    requests_->waitForDone(timeToGiveUp);
    removals_->waitForDone(timeToGiveUp);
}

template <typename Answer>
void UtilMod::inBackground(QThreadPool& pool, std::function<Answer()> work, std::function<void(const Answer&)> done) {
    auto* watcher = new QFutureWatcher<Answer>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [watcher, done = std::move(done)] {
        watcher->deleteLater();
        done(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(&pool, std::move(work)));
}

// --- The file browser -------------------------------------------------------------------------------------------

void UtilMod::doRevealInFinder(const std::filesystem::path& path) {
    showWith(path, [this](const auto& file) {
        return fileBrowser_.showItem(file) || fileBrowser_.openFolder(file.parent_path());
    });
}

void UtilMod::openFirstFolder(Folders folders) {
    withFirst(std::move(folders), [this](const std::filesystem::path& folder) {
        showWith(folder,
                 [this](const auto& file) { return fileBrowser_.openFolder(file) || fileBrowser_.showItem(file); });
    });
}

void UtilMod::getInformationOfFirstFolder(Folders folders) {
    withFirst(std::move(folders), [this](const std::filesystem::path& folder) { doGetInformation(folder); });
}

// Where none is there, what is done with the first tells so.
void UtilMod::withFirst(Folders folders, std::function<void(const std::filesystem::path&)> then) {
    using Path = std::filesystem::path;
    const auto find = [folders = std::move(folders)] {
        const auto named = folders();
        const auto first = std::find_if(named.begin(), named.end(), isThere);
        return first != named.end() ? *first : named.empty() ? Path() : named.front();
    };
    inBackground<Path>(*requests_, find, std::move(then));
}

void UtilMod::showWith(const std::filesystem::path& path, std::function<bool(const std::filesystem::path&)> show) {
    const auto ask = [show = std::move(show), file = standardized(path)] {
        if (!isThere(file)) {
            return Request::noSuchFile;
        }
        return show(file) ? Request::taken : Request::nobodyAnswers;
    };
    inBackground<Request>(*requests_, ask, [this, path](Request request) {
        if (request == Request::noSuchFile) {
            alertFileNotExists(path);
        } else if (request == Request::nobodyAnswers) {
            tell(tr("Can't show file"), tr("No file manager answers. The file is in the folder %1")
                                            .arg(platform::displayText(standardized(path).parent_path())));
        }
    });
}

void UtilMod::doGetInformation(const std::filesystem::path& path) {
    const auto ask = [this, file = standardized(path)] {
        if (!isThere(file)) {
            return Request::noSuchFile;
        }
        return fileBrowser_.showItemProperties(file) ? Request::taken : Request::nobodyAnswers;
    };
    inBackground<Request>(*requests_, ask, [this, path](Request request) {
        if (request == Request::noSuchFile) {
            alertFileNotExists(path);
        } else if (request == Request::nobodyAnswers) {
            showInformation(standardized(path));
        }
    });
}

void UtilMod::showInformation(const std::filesystem::path& path) {
    using Facts = std::optional<engine::FileFacts>;
    inBackground<Facts>(
        *requests_, [path] { return engine::FileFacts::of(path); },
        [this, path](const Facts& facts) {
            if (facts && window_) {
                openInfoWindow(path, *facts);
            } else {
                alertFileNotExists(path);
            }
        });
}

void UtilMod::openInfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts) {
    for (auto* open : window_->findChildren<InfoWindow*>()) {
        if (open->path() == path) {
            open->raise();
            open->activateWindow();
            return;
        }
    }
    const QPointer<InfoWindow> information = new InfoWindow(path, facts, window_);
    information->show();
    inBackground<quint64>(
        *requests_, [path, stop = information->closed()] { return files::measureItem(path, stop); },
        [information](quint64 size) {
            if (information) {
                information->setSize(size);
            }
        });
}

void UtilMod::alertFileNotExists(const std::filesystem::path& path) {
    tell(tr("Can't find file"), tr("The file’s %1%2%1 does not exist or its existence could not be determined")
                                    .arg(QStringLiteral("\""), platform::displayText(path)));
}

// Once the window is gone there is nobody to tell.
void UtilMod::tell(const QString& message, const QString& informativeText) {
    if (window_) {
        alerts_.runModal({message, informativeText, Alert::Suppression::notOffered, Alert::Buttons::takeNote}, window_);
    }
}

// --- The workspace ----------------------------------------------------------------------------------------------

void UtilMod::composeMail(const MailMessage& mail) {
    inBackground<bool>(
        *requests_, [this, url = mail.url()] { return workspace_.openURL(url); },
        [this, recipient = mail.recipient](bool opened) {
            if (!opened) {
                tell(tr("Can't open a mail program"),
                     recipient.isEmpty() ? tr("No program for mail answers.")
                                         : tr("No program for mail answers. The address is %1").arg(recipient));
            }
        });
}

void UtilMod::announceStart() {
    requests_->start([this] { workspace_.announceStart(); });
}

// --- Single removal ---------------------------------------------------------------------------------------------

// Always asked, also by those who want no question before a clean: one key is pressed more easily than all the steps of
// a clean are taken.
bool UtilMod::isRemovalConfirmed(const std::filesystem::path& path, qsizetype itemsInIt) {
    QString where = platform::displayText(path);
    if (itemsInIt > 0) {
        const QString count = itemsInIt == 1
                                  ? tr("It holds 1 other item of the list, which goes with it.")
                                  : tr("It holds %1 other items of the list, which go with it.").arg(itemsInIt);
        where += QStringLiteral("\n") + count;
    }
    const Alert alert{
        tr("Are you sure you want to completely delete “%1”?").arg(platform::displayText(path.filename())),
        where + QStringLiteral("\n\n") + tr("Files will be  permanently removed from your Hard Drive."),
        Alert::Suppression::notOffered, Alert::Buttons::deleteAndCancel};
    return window_ && alerts_.runModal(alert, window_).returnCode == AlertAnswer::firstButton;
}

void UtilMod::doRemoveFile(const std::filesystem::path& path, const std::function<void(bool success)>& finished,
                           const std::shared_ptr<const engine::FoundIn>& foundIn) {
    remover_.letAskUser();
    ++removalsUnderWay_;
    inBackground<engine::ItemRemoval>(
        *removals_,
        [this, file = standardized(path), foundIn] { return engine::ItemRemover(remover_).remove(file, foundIn); },
        [this, path, finished](const engine::ItemRemoval& removal) { finishRemoval(path, removal, finished); });
}

void UtilMod::finishRemoval(const std::filesystem::path& path, const engine::ItemRemoval& removal,
                            const std::function<void(bool success)>& finished) {
    --removalsUnderWay_;
    if (!removal.gone) {
        tell(tr("“%1” could not be removed").arg(platform::displayText(path.filename())), removal.reason);
    }
    engine::NotificationCenter::defaultCenter().post(engine::notification::singleFileRemoveFinished,
                                                     {{engine::key::success, engine::Number{removal.gone ? 1 : 0}}});
    finished(removal.gone);
}

// --- Where items lie --------------------------------------------------------------------------------------------

std::filesystem::path UtilMod::getFullPathToItem(const engine::FFItem& item,
                                                 const std::optional<std::filesystem::path>& folder) {
    if (auto location = item.location(); !location.empty()) {
        return location;
    }
    return folder ? *folder / item.pfname() : std::filesystem::path();
}

std::filesystem::path UtilMod::getFullDownloadPathToItem(const engine::FFItem& item) {
    auto location = item.location();
    return location.empty() ? getFullPathToItem(item, LibraryURLs::getDownloadsFolderURL()) : location;
}

std::filesystem::path UtilMod::getFullCachePathToItem(const engine::FFItem& item) {
    auto location = item.location();
    return location.empty() ? getFullPathToItem(item, LibraryURLs::getCachesFolderURL()) : location;
}

std::filesystem::path UtilMod::getFullTrashPathToItem(const engine::FFItem& item) {
    auto location = item.location();
    return location.empty() ? getFullPathToItem(item, LibraryURLs::getTrashFolderURL()) : location;
}

std::filesystem::path UtilMod::getFullLogsPathToItem(const engine::FFItem& item) { return item.pfpath(); }

}  // namespace brimvault::ui
