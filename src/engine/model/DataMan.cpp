#include "engine/model/DataMan.h"

#include <QCoreApplication>
#include <array>

#include "engine/model/AppItemData.h"
#include "engine/model/FileSize.h"

namespace brimvault::engine {

DataMan::DataMan() {
    for (const Section section : allSections) {
        observe(section);
    }
    observations_.push_back(NotificationCenter::defaultCenter().addMainThreadObserver(
        notification::placesFound, &mainThread_, [this](const Notification& heard) { mainThreadPlaces(heard); }));
    observations_.push_back(NotificationCenter::defaultCenter().addMainThreadObserver(
        notification::scanFinished, &mainThread_, [this](const Notification&) { sharedSpace_.search(items_); }));
    observations_.push_back(NotificationCenter::defaultCenter().addMainThreadObserver(
        notification::sharedSpaceFound, &mainThread_,
        [this](const Notification& heard) { mainThreadSharedSpace(heard); }));
}

void DataMan::observe(Section section) {
    auto& center = NotificationCenter::defaultCenter();
    const auto words = vocabulary(section);
    const auto hear = [&](QLatin1String name, void (DataMan::*handler)(Section, const Notification&)) {
        observations_.push_back(center.addMainThreadObserver(
            name, &mainThread_,
            [this, section, handler](const Notification& heard) { (this->*handler)(section, heard); }));
    };
    hear(words.scanFinished, &DataMan::mainThreadFin);
    hear(words.scanProgress, &DataMan::mainThreadProgr);
    hear(words.cleanFinished, &DataMan::mainThreadClean);
}

void DataMan::mainThreadFin(Section section, const Notification& notification) {
    auto& progress = progress_[section];
    progress.count.reset();
    progress.percent.reset();
    replaceFrom(section, notification);
    progress.scanned = true;  // before the post, whose observers ask for the subtitle
    sendNotification(vocabulary(section).interfaceFinished);
}

void DataMan::endScan(Section section) {
    progress_[section].count.reset();
    progress_[section].percent.reset();
    sendNotification(vocabulary(section).interfaceFinished);
}

void DataMan::resetArray(Section section) {
    if (section == Section::languageResources) {
        resetAppsArray();
    } else {
        set(section, std::nullopt);
    }
}

void DataMan::mainThreadProgr(Section section, const Notification& notification) {
    const auto words = vocabulary(section);
    auto& progress = progress_[section];
    progress.count = getNumberPropfromNotification(notification, key::totalCount);
    progress.percent = getNumberPropfromNotification(notification, key::progressPercent);
    const bool whole = section == Section::languageResources
                           ? getArrayPropfromNotification<ApplicationArray>(notification, words.arrayKey).has_value()
                           : getArrayPropfromNotification<ItemArray>(notification, words.arrayKey).has_value();
    if (whole) {
        replaceFrom(section, notification);
    } else {
        appendFrom(section, notification);
    }
    if (!progress.percent) {  // no scan runs: an item is back
        sharedSpace_.search(items_);
    }
    progress.scanned = true;
    sendNotification(words.interfaceProgress);
}

void DataMan::mainThreadPlaces(const Notification& notification) {
    const auto section = getNumberPropfromNotification(notification, key::section);
    const auto places = getPropfromNotification<Places>(notification, key::places);
    if (section && places) {
        places_[static_cast<Section>(*section)] = *places;
    }
}

void DataMan::mainThreadSharedSpace(const Notification& notification) {
    const auto groups = getPropfromNotification<std::shared_ptr<const SharedGroups>>(notification, key::sharedGroups);
    if (groups && sharedSpace_.take(*groups)) {
        for (const Section section : allSections) {
            items_[section].freesChanged();
        }
        sendNotification(notification::sharedSpaceInterfaceUpd);
    }
}

void DataMan::replaceFrom(Section section, const Notification& notification) {
    const auto words = vocabulary(section);
    if (section == Section::languageResources) {
        setApplicationsArray(getArrayPropfromNotification<ApplicationArray>(notification, words.arrayKey));
    } else {
        set(section, getArrayPropfromNotification<ItemArray>(notification, words.arrayKey));
    }
}

void DataMan::appendFrom(Section section, const Notification& notification) {
    const auto words = vocabulary(section);
    if (section == Section::languageResources) {
        add2ApplicationsArray(getArrayPropfromNotification<ApplicationArray>(notification, words.deltaKey));
    } else {
        add(section, getArrayPropfromNotification<ItemArray>(notification, words.deltaKey));
    }
}

void DataMan::mainThreadClean(Section section, const Notification& notification) {
    const auto words = vocabulary(section);
    if (section == Section::languageResources) {
        mainThreadAppResClean(notification);
    } else if (const auto gone = getArrayPropfromNotification<ItemArray>(notification, words.arrayKey)) {
        if (getNumberPropfromNotification(notification, key::movedToTrash).value_or(0) == 0) {
            sharedSpace_.removed(section, *gone, items_[section]);
        }
        items_[section].remove(*gone);
        sharedSpace_.search(items_);
    }
    sendNotification(words.interfaceFinished);
    items_[section].forgetRemoved();
}

void DataMan::mainThreadAppResClean(const Notification& notification) {
    const auto cleaned = getDictionaryPropfromNotification<CleanedApplications>(notification, key::cleanedApplications);
    if (!cleaned) {
        return;
    }
    for (const auto& application : std::as_const(applications_)) {
        if (const auto removed = cleaned->find(application->pAppName()); removed != cleaned->end()) {
            application->updCleanedLocalizations(removed->second, platestNeededLangs_);
        }
    }
}

void DataMan::setApplicationsArray(const std::optional<ApplicationArray>& items) {
    applications_ = items.value_or(ApplicationArray());
    updateAppsItemsForSelfLangsforApps();
}

// Recomputes the earlier applications too: their localizations may have changed since they came.
void DataMan::add2ApplicationsArray(const std::optional<ApplicationArray>& items) {
    applications_ += items.value_or(ApplicationArray());
    updateAppsItemsForSelfLangsforApps();
}

void DataMan::set(Section section, const std::optional<ItemArray>& items) {
    const auto generation = items_[section].generation();
    const bool wasEmpty = items_[section].items().isEmpty();
    items_[section].replace(items.value_or(ItemArray()));
    if (wasEmpty || items_[section].generation() != generation) {
        sharedSpace_.scanned(section);
    }
}

void DataMan::add(Section section, const std::optional<ItemArray>& items) {
    items_[section].append(items.value_or(ItemArray()));
}

void DataMan::updateResSizesForApps(const QStringList& neededLanguages) {
    platestNeededLangs_ = neededLanguages;
    updateAppsItemsForSelfLangsforApps();
}

void DataMan::updateAppsItemsForSelfLangsforApps() const {
    for (const auto& application : applications_) {
        application->recalcKeepSpaceForLocales(platestNeededLangs_);
    }
    sendNotification(vocabulary(Section::languageResources).interfaceProgress);
}

void DataMan::sendNotification(const QString& name) { NotificationCenter::defaultCenter().post(name); }

bool DataMan::setChecked(Section section, CleanableItem& item, bool checked) {
    if (auto* file = dynamic_cast<FFItem*>(&item)) {
        return items_[section].setChecked(*file, checked);
    }
    item.setPpbChecked(checked);
    return false;
}

ItemSums DataMan::sums(Section section) const {
    if (section != Section::languageResources) {
        return items_[section].sums();
    }
    ItemSums found;
    for (const auto& application : applications_) {
        found.add(*application);
    }
    return found;
}

quint64 DataMan::getSize2CleanALL() const {
    quint64 sum = 0;
    for (const Section section : allSections) {
        sum += sums(section).all;
    }
    return sum;
}

quint64 DataMan::getSize2CleanALLSel(bool bApps, bool bDwn, bool bCh, bool bTr, bool bLogs) const {
    const std::array<bool, allSections.size()> wanted = {bApps, bDwn, bCh, bTr, bLogs};
    quint64 sum = 0;
    for (const Section section : allSections) {
        sum += wanted[static_cast<std::size_t>(section)] ? sums(section).selected : 0;
    }
    return sum;
}

quint64 DataMan::freesOfSelection(const PerSection<bool>& sections) const {
    quint64 sum = sharedSpace_.freed(sections);
    for (const Section section : allSections) {
        sum += sections[section] ? sums(section).freesSelected() : 0;
    }
    return sum;
}

QString DataMan::subtitle(Section section) const {
    const auto& progress = progress_[section];
    if (!progress.scanned) {
        return QCoreApplication::translate("Subtitle", "Not Scanned");
    }
    const bool applications = section == Section::languageResources;
    const ItemSums found = sums(section);
    if (progress.percent) {
        if (applications && *progress.percent == 0 && progress.count.value_or(0) != 0) {
            return QCoreApplication::translate("Subtitle", "%1 applications found").arg(*progress.count);
        }
        return QCoreApplication::translate("Subtitle", "%1%2. %3 found")
            .arg(*progress.percent)
            .arg(QLatin1Char('%'))
            .arg(FileSize::formatMemoryStringDot1(found.all));
    }
    if (found.all > 0) {
        return QCoreApplication::translate("Subtitle", "%1 of %2 Selected")
            .arg(FileSize::formatMemoryStringDot1(found.selected), FileSize::formatMemoryStringDot1(found.all));
    }
    return applications ? QCoreApplication::translate("Subtitle", "No extra resources found")
                        : QCoreApplication::translate("Subtitle", "No files found");
}

}  // namespace brimvault::engine
