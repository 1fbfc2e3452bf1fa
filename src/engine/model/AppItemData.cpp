#include "engine/model/AppItemData.h"

#include <QSet>
#include <utility>

#include "engine/model/FileManager.h"
#include "engine/model/KeptLocalizations.h"

namespace brimvault::engine {

std::shared_ptr<AppItemData> AppItemData::initWithName(const std::filesystem::path& path) {
    auto item = std::make_shared<AppItemData>();
    item->pAppName_ = path;
    item->displayName_ = FileManager::displayNameAtPath(path);
    (void)item->nameKey();  // made here, not on the main thread
    return item;
}

void AppItemData::addLocalizationItem(const std::shared_ptr<LocalizationItem>& item) {
    pmLocalizations_.append(item);
    addToGroup(item);
    counted_.reset();
}

std::filesystem::path AppItemData::keyForLocalizationItem(const LocalizationItem& item) const {
    const auto folder = item.plocPath.parent_path().native();
    const auto& application = pAppName_.native();
    return folder.starts_with(application) ? folder.substr(application.size()) : folder;
}

void AppItemData::addToGroup(const std::shared_ptr<LocalizationItem>& item) {
    const auto [place, isNew] =
        groupOfKey_.try_emplace(keyForLocalizationItem(*item).native(), pmLocalizationsDict_.size());
    if (isNew) {
        pmLocalizationsDict_.emplace_back();
    }
    pmLocalizationsDict_[place->second].append(item);
}

void AppItemData::recalcLocalizationsDict() {
    pmLocalizationsDict_.clear();
    groupOfKey_.clear();
    for (const auto& item : std::as_const(pmLocalizations_)) {
        addToGroup(item);
    }
}

void AppItemData::forEachRemovable(const QStringList& needed,
                                   const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call) const {
    if (needed.isEmpty() || pmLocalizations_.size() < 2) {
        return;
    }
    for (const auto& folder : pmLocalizationsDict_) {
        forEachNotKept(folder, needed, call);
    }
}

// Called for all applications whenever some come: does nothing if the input is unchanged.
void AppItemData::recalcKeepSpaceForLocales(const QStringList& needed) {
    const Counted now{needed, ppbDeletable()};
    if (counted_ == now) {
        return;
    }
    counted_ = now;
    ncanKeepSpace_ = 0;
    ncanKeepSpaceSel_ = 0;
    frees_ = 0;
    if (needed.isEmpty() || pmLocalizations_.size() < 2) {
        return;
    }
    QSet<QString> languages;
    forEachRemovable(needed, [&](const std::shared_ptr<LocalizationItem>& item) {
        ncanKeepSpace_ += item->nlocSize;
        frees_ += item->frees;
        ncanKeepSpaceSel_ += now.isDeletable ? item->nlocSize : 0;
        languages.insert(item->plocNameId);
    });
    ncanCleanLocs_ = static_cast<quint64>(languages.size());
}

LocalizationArray AppItemData::itemsToClean(const QStringList& needed) const {
    LocalizationArray items;
    if (ppbChecked() && ppbDeletable()) {
        forEachRemovable(needed, [&](const std::shared_ptr<LocalizationItem>& item) { items.append(item); });
    }
    return items;
}

void AppItemData::updCleanedLocalizations(const LocalizationArray& removed, const QStringList& needed) {
    const QSet<std::shared_ptr<LocalizationItem>> gone(removed.cbegin(), removed.cend());
    pmLocalizations_.removeIf([&](const auto& item) { return gone.contains(item); });
    recalcLocalizationsDict();
    counted_.reset();
    recalcKeepSpaceForLocales(needed);
}

QString AppItemData::ppdisplayKeyName() const {
    const auto extension = displayName_.lastIndexOf(QLatin1Char('.'));
    return extension > 0 ? displayName_.left(extension) : displayName_;
}

}  // namespace brimvault::engine
