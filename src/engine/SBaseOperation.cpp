#include "engine/SBaseOperation.h"

#include "engine/FileManager.h"
#include "files/Measure.h"

namespace brimvault::engine {

void SBaseOperation::initTopLevelItemsCount() {
    setTopLevelItemsCount(countTopItemsInOperFolder(files::HiddenEntries::skip));
}

qint64 SBaseOperation::countTopItemsInOperFolder(files::HiddenEntries hidden) const {
    const auto root = getOperationRootFolderURL();
    return root ? FileManager::numberOfFilesInFolder(*root, hidden) : 0;
}

quint64 SBaseOperation::getFileFolderSize(const std::filesystem::path& path) const {
    return files::measureItem(path, stopToken());
}

}  // namespace brimvault::engine
