#include "langres/SAOperation.h"

#include <cerrno>
#include <exception>

#include "engine/model/FileManager.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "files/trees/FolderWalk.h"
#include "files/trees/Measure.h"
#include "files/walk/AheadOf.h"
#include "langres/LanguagesManager.h"
#include "langres/LocalizationFolders.h"
#include "platform/LibraryURLs.h"
#include "platform/Packages.h"

namespace brimvault::langres {

using engine::AppItemData;
using engine::ApplicationArray;
using engine::NotificationCenter;
using files::Descend;

namespace {

constexpr qsizetype minLocalizations = 2;  // the last one of a folder always stays

}  // namespace

SAOperation::SAOperation()
    : SAOperation(platform::LibraryURLs::getApplicationFolderURL(),
                  platform::LibraryURLs::getUserApplicationFolderURL()) {}

SAOperation::SAOperation(Folder applicationFolder, Folder userApplicationFolder)
    : SBaseOperation(engine::Section::languageResources),
      applicationFolder_(std::move(applicationFolder)),
      userApplicationFolder_(userApplicationFolder == applicationFolder_ ? Folder()
                                                                         : std::move(userApplicationFolder)) {}

void SAOperation::main() {
    initApplicationsCount();
    collectAppsInfo();
    closeRoots();
    sendOperationCompleted();
}

void SAOperation::initApplicationsCount() {
    pAppsPaths_.clear();
    for (const auto& folder : {applicationFolder_, userApplicationFolder_}) {
        if (folder) {
            if (const auto* root = rootToList(*folder)) {
                countPackagesBelow(*root);
            }
        }
    }
    setTopLevelItemsCount(static_cast<qint64>(pAppsPaths_.size()));
}

// Packages inside a package are not scanned by themselves.
void SAOperation::countPackagesBelow(const platform::SectionRoot& root) {
    const auto& path = root.place->resolved;
    (void)files::forEachFolder(*root.folder, path, files::HiddenEntries::skip, stopToken(), [&](const auto& found) {
        if (!platform::Packages::isPackage(found.path)) {
            return Descend::yes;
        }
        if (found.isMountPoint()) {
            return Descend::no;
        }
        pAppsPaths_.push_back({found.path, root.place});
        setTopLevelItemsCount(nTopLevelItemsCount() + 1);
        tryUpdateProgress({}, 0);
        return Descend::no;
    });
}

void SAOperation::collectAppsInfo() {
    qint64 processed = 0;
    const auto stop = stopToken();
    files::AheadOf<std::shared_ptr<AppItemData>> applications(
        pAppsPaths_.size(), stop, [this](std::size_t number) { return readPackage(pAppsPaths_[number]); });
    for (std::size_t number = 0; number < pAppsPaths_.size(); ++number) {
        if (isCancelled()) {
            return;
        }
        ++processed;
        const auto application = applications.take(number);
        if (isCancelled()) {
            return;  // it may have been read in part
        }
        if (!application) {
            continue;
        }
        const auto percent =
            static_cast<qint64>(static_cast<double>(processed) * 100.0 / static_cast<double>(nTopLevelItemsCount()));
        if (application->pLocalizations().size() < minLocalizations) {
            tryUpdateProgress({}, percent);
            continue;
        }
        application->setPpbDeletable(true);
        pAppsArray_.append(application);
        tryUpdateProgress({application}, percent);
    }
}

std::shared_ptr<AppItemData> SAOperation::readPackage(const FoundPackage& found) const {
    if (!isToBeScanned(found.path)) {
        return nullptr;
    }
    auto application = AppItemData::initWithName(found.path);
    collectLocalizations(*application, found.root);
    return application;
}

// A package whose properties cannot be read is left alone.
bool SAOperation::isToBeScanned(const std::filesystem::path& path) {
    try {
        return isFolder(path) &&
               LanguagesManager::isPossibleToRemoveLangsInBundleWithIdentifier(
                   platform::Packages::bundleIdentifier(path)) &&
               !engine::FileManager::isAppPathInQuarantine(path);
    } catch (const std::exception&) {
        return false;
    }
}

// Localizations of one folder share its FoundIn. If the folder has no readable inode, they are left alone.
void SAOperation::collectLocalizations(AppItemData& application,
                                       const std::shared_ptr<const platform::RootPlace>& root) const {
    std::shared_ptr<const engine::FoundIn> holder;
    const auto collect = [&](const files::FoundFolder& found) {
        const auto status =
            isLocalizationName(found.name) ? found.parent.status() : files::Result<files::NodeStatus>::failed(ENOENT);
        if (status) {
            if (!holder || holder->folder != status->identity) {
                holder = std::make_shared<const engine::FoundIn>(
                    engine::FoundIn{(found.path.parent_path() / "").native(), status->identity, root});
            }
            const auto measured = files::measureSpaceAt(found.parent, found.name, stopToken());
            auto item = engine::LocalizationItem::initWithPath(found.path, measured.logical);
            item->frees = measured.space.bytes;
            item->foundIn = holder;
            application.addLocalizationItem(item);
        }
        return Descend::yes;
    };
    (void)files::forEachFolder(application.pAppName(), files::HiddenEntries::skip, stopToken(), collect);
}

// A batch that has everything found so far replaces what the model holds: the first application, and every empty batch
// before it.
void SAOperation::tryUpdateProgress(const ApplicationArray& delta, qint64 nprogr) const {
    const auto words = engine::vocabulary(section());
    const bool everything = delta.size() == pAppsArray_.size();
    NotificationCenter::defaultCenter().post(
        words.scanProgress, {{everything ? words.arrayKey : words.deltaKey, everything ? pAppsArray_ : delta},
                             {engine::key::totalCount, nTopLevelItemsCount()},
                             {engine::key::progressPercent, nprogr}});
}

void SAOperation::sendOperationCompleted() const {
    const auto words = engine::vocabulary(section());
    NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, pAppsArray_}});
}

}  // namespace brimvault::langres
