#include "engine/SBaseOperation.h"

#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"
#include "files/Measure.h"

namespace brimvault::engine {

void SBaseOperation::initTopLevelItemsCount() {
    setTopLevelItemsCount(countTopItemsInOperFolder(files::HiddenEntries::skip));
}

qint64 SBaseOperation::countTopItemsInOperFolder(files::HiddenEntries hidden) const {
    const auto root = getOperationRootFolderURL();
    qint64 count = 0;
    if (root) {
        // What could be read counts; a folder that cannot be read holds nothing.
        (void)files::forEachChild(*root, hidden, [&](const files::DirectoryEntry&) {
            ++count;
            return !isCancelled();
        });
    }
    return count;
}

void SBaseOperation::failed() {
    const auto words = vocabulary(section());
    const InfoValue nothing =
        section() == Section::languageResources ? InfoValue(ApplicationArray()) : InfoValue(ItemArray());
    NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, nothing}});
}

quint64 SBaseOperation::getFileFolderSize(const std::filesystem::path& path) const {
    return files::measureItem(path, stopToken());
}

quint64 SBaseOperation::getFileFolderSize(const files::DirectoryHandle& folder, const char* name) const {
    return files::measureItemAt(folder, name, stopToken());
}

}  // namespace brimvault::engine
