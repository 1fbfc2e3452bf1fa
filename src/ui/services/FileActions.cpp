#include "ui/services/FileActions.h"

#include <QPointer>
#include <algorithm>

#include "files/NodeStatus.h"
#include "files/trees/Measure.h"
#include "platform/TrashFolders.h"
#include "platform/text/DisplayText.h"
#include "scanners/SystemPathsGenerator.h"
#include "ui/services/InfoWindow.h"

namespace brimvault::ui {

namespace {

using Path = std::filesystem::path;

enum class Request { taken, noSuchFile, nobodyAnswers };

bool isThere(const Path& path) { return path.is_absolute() && files::statusOf(path); }

}  // namespace

Path FileActions::standardized(const Path& path) {
    return scanners::SystemPathsGenerator::shared().urlForPath(path).lexically_normal();
}

void FileActions::reveal(const Path& path) {
    showWith(path, [&browser = fileBrowser_](const Path& file) {
        return browser.showItem(file) || browser.openFolder(file.parent_path());
    });
}

void FileActions::openFirst(Folders folders) {
    withFirst(std::move(folders), [this](const Path& folder) {
        showWith(folder, [&browser = fileBrowser_](const Path& file) {
            return browser.openFolder(file) || browser.showItem(file);
        });
    });
}

void FileActions::showInformationOfFirst(Folders folders) {
    withFirst(std::move(folders), [this](const Path& folder) { showInformation(folder); });
}

// Where none exists, the first is tried all the same, which tells the user so.
void FileActions::withFirst(Folders folders, std::function<void(const Path&)> then) {
    const auto find = [folders = std::move(folders)] {
        const auto named = folders();
        const auto first = std::find_if(named.begin(), named.end(), isThere);
        return first != named.end() ? *first : named.empty() ? Path() : named.front();
    };
    calls_.call<Path>(find, std::move(then));
}

void FileActions::showWith(const Path& path, std::function<bool(const Path&)> show) {
    const auto ask = [show = std::move(show), file = standardized(path)] {
        if (!isThere(file)) {
            return Request::noSuchFile;
        }
        return show(file) ? Request::taken : Request::nobodyAnswers;
    };
    calls_.call<Request>(ask, [this, path](Request request) {
        if (request == Request::noSuchFile) {
            alertFileNotExists(path);
        } else if (request == Request::nobodyAnswers) {
            notices_.show(tr("Can't show file"), tr("No file manager answers. The file is in the folder %1")
                                                     .arg(platform::displayText(standardized(path).parent_path())));
        }
    });
}

// Of an item of the trash no file manager tells where it was, and when it was deleted.
void FileActions::showInformation(const Path& path, const ToldOfFile& told) {
    const auto ask = [this, file = standardized(path), hasNote = !told.note.isEmpty()] {
        if (!isThere(file)) {
            return Request::noSuchFile;
        }
        const bool isOurs = hasNote || platform::TrashFolders::recordOfItem(file).has_value();
        return !isOurs && fileBrowser_.showItemProperties(file) ? Request::taken : Request::nobodyAnswers;
    };
    calls_.call<Request>(ask, [this, path, told](Request request) {
        if (request == Request::noSuchFile) {
            alertFileNotExists(path);
        } else if (request == Request::nobodyAnswers) {
            showOwnInformation(standardized(path), told);
        }
    });
}

void FileActions::showOwnInformation(const Path& path, const ToldOfFile& told) {
    using Facts = std::optional<engine::FileFacts>;
    calls_.call<Facts>([path] { return engine::FileFacts::of(path); },
                       [this, path, told](const Facts& facts) {
                           if (facts && notices_.window() != nullptr) {
                               openInfoWindow(path, *facts, told);
                           } else {
                               alertFileNotExists(path);
                           }
                       });
}

void FileActions::openInfoWindow(const Path& path, const engine::FileFacts& facts, const ToldOfFile& told) {
    for (auto* open : notices_.window()->findChildren<InfoWindow*>()) {
        if (open->path() == path) {
            open->raise();
            open->activateWindow();
            return;
        }
    }
    const QPointer<InfoWindow> information = new InfoWindow(path, facts, told.note, notices_.window());
    information->show();
    if (!told.note.isEmpty()) {
        information->setSize(told.bytes);
        return;
    }
    calls_.call<quint64>([path, stop = information->closed()] { return files::measureItem(path, stop); },
                         [information](quint64 size) {
                             if (information) {
                                 information->setSize(size);
                             }
                         });
}

void FileActions::alertFileNotExists(const Path& path) const {
    notices_.show(tr("Can't find file"), tr("The file’s %1%2%1 does not exist or its existence could not be determined")
                                             .arg(QStringLiteral("\""), platform::displayText(path)));
}

}  // namespace brimvault::ui
