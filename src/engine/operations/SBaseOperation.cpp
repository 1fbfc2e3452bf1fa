#include "engine/operations/SBaseOperation.h"

#include <algorithm>
#include <utility>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "files/trees/Measure.h"

namespace brimvault::engine {

void SBaseOperation::initTopLevelItemsCount() {
    setTopLevelItemsCount(countTopItemsInOperFolder(files::HiddenEntries::skip));
}

const SBaseOperation::NamedRoot& SBaseOperation::namedRoot(const std::filesystem::path& named) const {
    const auto known = roots_.find(named);
    if (known != roots_.end() && known->second.root.place->refusal != platform::RootRefusal::missing) {
        return known->second;
    }
    NamedRoot found{platform::openSectionRoot(named), false};
    found.isDuplicate = std::any_of(roots_.begin(), roots_.end(), [&](const auto& other) {
        return other.second.root.folder && other.second.root.place->resolved == found.root.place->resolved;
    });
    return roots_.insert_or_assign(named, std::move(found)).first->second;
}

const platform::SectionRoot& SBaseOperation::root(const std::filesystem::path& named) const {
    return namedRoot(named).root;
}

const platform::SectionRoot* SBaseOperation::rootToList(const std::filesystem::path& named) const {
    const auto& found = namedRoot(named);
    return found.root.folder && !found.isDuplicate ? &found.root : nullptr;
}

void SBaseOperation::closeRoots(const Places& others) {
    Places places;
    for (const auto& [named, found] : std::exchange(roots_, {})) {
        places.append(found.root.place);
    }
    places += others;
    NotificationCenter::defaultCenter().post(notification::placesFound,
                                             {{key::section, static_cast<Number>(section())}, {key::places, places}});
}

qint64 SBaseOperation::countTopItemsInOperFolder(files::HiddenEntries hidden) const {
    const auto root = getOperationRootFolderURL();
    qint64 count = 0;
    if (root) {
        // Counts what can be read.
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

}  // namespace brimvault::engine
