#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "engine/model/SectionItems.h"
#include "engine/model/SharedSpace.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

/// The results of all sections: takes in what the scan and clean operations post, and answers what the window shows.
///
/// Main thread only, from construction to destruction. Notifications come from any thread and are queued for the main
/// thread.
class DataMan {
public:
    DataMan();
    DataMan(const DataMan&) = delete;
    DataMan& operator=(const DataMan&) = delete;

    /// Empties the array of the section.
    void resetArray(Section section);
    /// Ends the progress of a scan that was given up, and so posts no end of its own. Posts that the section is
    /// finished, with what was found.
    void endScan(Section section);

    [[nodiscard]] qsizetype count(Section section) const {
        return section == Section::languageResources ? getAppsCount() : itemsOf(section).size();
    }
    [[nodiscard]] const ApplicationArray& getAppsArray() const { return applications_; }
    /// The array of a section of files; empty for Language Resources.
    [[nodiscard]] const ItemArray& itemsOf(Section section) const { return items_[section].items(); }
    /// The same, with the generation number of the array. `removed` is filled only while the end of a clean is posted.
    [[nodiscard]] const SectionItems& sectionItems(Section section) const { return items_[section]; }
    /// Ticks or unticks an item of the section, with what lies in it; see SectionItems. Answers whether other items may
    /// have changed as well.
    bool setChecked(Section section, CleanableItem& item, bool checked);
    /// To be called after the marks of many items of the section were set one by one.
    void settleMarks(Section section) { items_[section].settleMarks(); }
    /// The sums of a section's items, with the marks that they have now.
    [[nodiscard]] ItemSums sums(Section section) const;

    /// Bytes: of all items, and of those that are ticked.
    [[nodiscard]] quint64 getSize2CleanALL() const;
    [[nodiscard]] quint64 getSize2CleanALLSel() const { return getSize2CleanALLSel(true, true, true, true, true); }
    /// Bytes of the ticked items in the sections whose flag is set.
    [[nodiscard]] quint64 getSize2CleanALLSel(bool bApps, bool bDwn, bool bCh, bool bTr, bool bLogs) const;
    /// Bytes on disk that cleaning the ticked items in these sections would free: a file counts once, and only if all
    /// of its names go. Files with names in several items count some time after a scan, a clean or a move.
    [[nodiscard]] quint64 freesOfSelection(const PerSection<bool>& sections) const;
    /// The items that free something together; null while that is not known.
    [[nodiscard]] std::shared_ptr<const SharedGroups> sharedGroups() const { return sharedSpace_.groups(); }

    /// The line under a section's name: its progress, what is selected of it, or that nothing was found.
    [[nodiscard]] QString subtitle(Section section) const;

    /// Whole per cents of the section's running scan, as it reported them; none if no scan runs.
    [[nodiscard]] std::optional<Number> progressPercent(Section section) const { return progress_[section].percent; }

    /// The folders in which the last scan of the section looked for files; empty before the first.
    [[nodiscard]] const Places& places(Section section) const { return places_[section]; }

    /// Takes the languages to keep and recomputes what every application would free.
    void updateResSizesForApps(const QStringList& neededLanguages);
    /// Posts the name without user info.
    static void sendNotification(const QString& name);

    // --- Kept for callers outside of the window: nothing in src but this class calls these ---

    void resetAppsArray() { applications_.clear(); }
    void resetDwnsArray() { setDownloadsArray(std::nullopt); }
    void resetCachesArray() { setCachesArray(std::nullopt); }
    void resetTrashArray() { setTrashArray(std::nullopt); }
    void resetLogsArray() { setLogsArray(std::nullopt); }

    /// Replace; none empties.
    void setApplicationsArray(const std::optional<ApplicationArray>& items);
    void setDownloadsArray(const std::optional<ItemArray>& items) { set(Section::downloads, items); }
    void setCachesArray(const std::optional<ItemArray>& items) { set(Section::caches, items); }
    void setTrashArray(const std::optional<ItemArray>& items) { set(Section::trash, items); }
    void setLogsArray(const std::optional<ItemArray>& items) { set(Section::logs, items); }

    /// Append; none changes nothing.
    void add2ApplicationsArray(const std::optional<ApplicationArray>& items);
    void add2DownloadsArray(const std::optional<ItemArray>& items) { add(Section::downloads, items); }
    void add2CachesArray(const std::optional<ItemArray>& items) { add(Section::caches, items); }
    void add2TrashArray(const std::optional<ItemArray>& items) { add(Section::trash, items); }
    void add2LogsArray(const std::optional<ItemArray>& items) { add(Section::logs, items); }

    [[nodiscard]] const ItemArray& getDownloadsArray() const { return itemsOf(Section::downloads); }
    [[nodiscard]] const ItemArray& getCachesArray() const { return itemsOf(Section::caches); }
    [[nodiscard]] const ItemArray& getTrashArray() const { return itemsOf(Section::trash); }
    [[nodiscard]] const ItemArray& getLogsArray() const { return itemsOf(Section::logs); }

    [[nodiscard]] qsizetype getAppsCount() const { return applications_.size(); }
    [[nodiscard]] qsizetype getDownloadsCount() const { return getDownloadsArray().size(); }
    [[nodiscard]] qsizetype getCachesCount() const { return getCachesArray().size(); }
    [[nodiscard]] qsizetype getTrashCount() const { return getTrashArray().size(); }
    [[nodiscard]] qsizetype getLogsCount() const { return getLogsArray().size(); }

    /// Null for an index outside the array.
    [[nodiscard]] std::shared_ptr<AppItemData> getAppItem(qsizetype index) const { return at(applications_, index); }
    [[nodiscard]] std::shared_ptr<FFItem> getDownloadItem(qsizetype index) const {
        return at(getDownloadsArray(), index);
    }
    [[nodiscard]] std::shared_ptr<FFItem> getCacheItem(qsizetype index) const { return at(getCachesArray(), index); }
    [[nodiscard]] std::shared_ptr<FFItem> getTrashItem(qsizetype index) const { return at(getTrashArray(), index); }
    [[nodiscard]] std::shared_ptr<FFItem> getLogItem(qsizetype index) const { return at(getLogsArray(), index); }

    /// Bytes: of all items of one section, and of those that are ticked.
    [[nodiscard]] quint64 getSize2CleanApps() const { return sums(Section::languageResources).all; }
    [[nodiscard]] quint64 getSize2CleanDwns() const { return sums(Section::downloads).all; }
    [[nodiscard]] quint64 getSize2CleanCaches() const { return sums(Section::caches).all; }
    [[nodiscard]] quint64 getSize2CleanTrash() const { return sums(Section::trash).all; }
    [[nodiscard]] quint64 getSize2CleanLogs() const { return sums(Section::logs).all; }
    [[nodiscard]] quint64 getSize2CleanAppsSel() const { return sums(Section::languageResources).selected; }
    [[nodiscard]] quint64 getSize2CleanDwnsSel() const { return sums(Section::downloads).selected; }
    [[nodiscard]] quint64 getSize2CleanCachesSel() const { return sums(Section::caches).selected; }
    [[nodiscard]] quint64 getSize2CleanTrashSel() const { return sums(Section::trash).selected; }
    [[nodiscard]] quint64 getSize2CleanLogsSel() const { return sums(Section::logs).selected; }

    /// Sums `ppnSize` and `ppnSizeSel`, each stored where its pointer is not null.
    template <typename Item>
    static void getsizeAndSelSize(const QList<std::shared_ptr<Item>>& items, quint64* nsz, quint64* nszSel);

    [[nodiscard]] QString getSubTitleApps() const { return subtitle(Section::languageResources); }
    [[nodiscard]] QString getSubTitleDwns() const { return subtitle(Section::downloads); }
    [[nodiscard]] QString getSubTitleCaches() const { return subtitle(Section::caches); }
    [[nodiscard]] QString getSubTitleTrash() const { return subtitle(Section::trash); }
    [[nodiscard]] QString getSubTitleLogs() const { return subtitle(Section::logs); }

private:
    struct Progress {
        std::optional<Number> count;
        std::optional<Number> percent;  ///< set exactly while a scan of the section reports progress
        bool scanned = false;           ///< has received a result since launch
    };

    template <typename Item>
    static std::shared_ptr<Item> at(const QList<std::shared_ptr<Item>>& items, qsizetype index);

    void observe(Section section);
    void mainThreadFin(Section section, const Notification& notification);
    void mainThreadProgr(Section section, const Notification& notification);
    void mainThreadClean(Section section, const Notification& notification);
    void mainThreadPlaces(const Notification& notification);
    void mainThreadSharedSpace(const Notification& notification);
    void mainThreadAppResClean(const Notification& notification);
    void replaceFrom(Section section, const Notification& notification);
    void appendFrom(Section section, const Notification& notification);

    void set(Section section, const std::optional<ItemArray>& items);
    void add(Section section, const std::optional<ItemArray>& items);
    void updateAppsItemsForSelfLangsforApps() const;

    ApplicationArray applications_;
    PerSection<SectionItems> items_;
    SharedSpace sharedSpace_;
    PerSection<Progress> progress_;
    PerSection<Places> places_;
    QStringList platestNeededLangs_;

    QObject mainThread_;  ///< context of queued notifications; those pending are dropped with it
    std::vector<NotificationCenter::Observation> observations_;
};

template <typename Item>
void DataMan::getsizeAndSelSize(const QList<std::shared_ptr<Item>>& items, quint64* nsz, quint64* nszSel) {
    quint64 all = 0;
    quint64 selected = 0;
    for (const auto& item : items) {
        all += item->ppnSize();
        selected += item->ppnSizeSel();
    }
    if (nsz != nullptr) {
        *nsz = all;
    }
    if (nszSel != nullptr) {
        *nszSel = selected;
    }
}

template <typename Item>
std::shared_ptr<Item> DataMan::at(const QList<std::shared_ptr<Item>>& items, qsizetype index) {
    return index < 0 || index >= items.size() ? nullptr : items[index];
}

}  // namespace brimvault::engine
