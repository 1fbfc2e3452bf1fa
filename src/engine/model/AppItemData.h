#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/ItemArrays.h"
#include "engine/model/CleanableItem.h"
#include "engine/model/FoundIn.h"

namespace brimvault::engine {

/// One localization folder of one application, as the scan measured it. Not changed after it is posted.
struct LocalizationItem {
    /// The identifier is that of the folder's name; the size is in bytes.
    static std::shared_ptr<LocalizationItem> initWithPath(const std::filesystem::path& path, quint64 size);

    quint64 nlocSize = 0;                              ///< bytes
    QString plocNameId;                                ///< canonical identifier of its language
    std::filesystem::path plocPath;                    ///< full path of the folder
    std::shared_ptr<const FoundIn> foundIn = nullptr;  ///< the folder that holds it; null when no scan has found it

    /// True unless the identifier is among those to keep, compared letter by letter.
    [[nodiscard]] bool shouldBeRemovedWithNeedLangs(const QStringList& needed) const {
        return !needed.contains(plocNameId);
    }
};

/// One application that has localizations. Its counters depend on the languages to keep, as of the last
/// `recalcKeepSpaceForLocales`.
///
/// Localizations are grouped by the folder that holds them, in the order of discovery. One localization of each folder
/// always stays: if none is to be kept, the one closest to what the user reads. Counting and removing share one
/// function (`forEachRemovable`), so that both spare the same one.
///
/// Belongs to the scan's thread until it is posted, then to the main thread. A clean calls `itemsToClean` on its own
/// thread; the main thread changes the localizations only after the clean's end.
class AppItemData final : public CleanableItem {
public:
    static std::shared_ptr<AppItemData> initWithName(const std::filesystem::path& path);

    /// Full path of the application bundle, though it is called a name.
    [[nodiscard]] const std::filesystem::path& pAppName() const { return pAppName_; }
    [[nodiscard]] const LocalizationArray& pLocalizations() const { return pmLocalizations_; }
    /// Distinct languages that cleaning would remove.
    [[nodiscard]] quint64 cleanableLocsCount() const { return ncanCleanLocs_; }

    void addLocalizationItem(const std::shared_ptr<LocalizationItem>& item);
    /// The folder that holds a localization, relative to the bundle; empty for one directly in the bundle.
    [[nodiscard]] std::filesystem::path keyForLocalizationItem(const LocalizationItem& item) const;

    /// Recomputes what cleaning would free if the given languages are kept. With no languages, or fewer than two
    /// localizations, nothing can be freed, and the count of languages stays unchanged.
    void recalcKeepSpaceForLocales(const QStringList& needed);
    /// What to remove now; empty if nothing may be removed.
    [[nodiscard]] LocalizationArray itemsToClean(const QStringList& needed) const;
    /// Drops what was removed, then recomputes.
    void updCleanedLocalizations(const LocalizationArray& removed, const QStringList& needed);

    /// The name under which the desktop presents the bundle.
    [[nodiscard]] const QString& displayName() const { return displayName_; }
    [[nodiscard]] QString ppdisplayName() const override { return displayName_; }
    [[nodiscard]] QString ppdisplayKeyName() const override;
    [[nodiscard]] quint64 getSpace2Save() const override { return ncanKeepSpace_; }
    [[nodiscard]] quint64 getSpace2SaveBySel() const override {
        return ppbChecked() && ppbDeletable() ? ncanKeepSpaceSel_ : 0;
    }

private:
    /// The input of the counters.
    struct Counted {
        QStringList needed;
        bool isDeletable;
        bool operator==(const Counted&) const = default;
    };

    void recalcLocalizationsDict();
    void addToGroup(const std::shared_ptr<LocalizationItem>& item);
    /// Calls for every localization that is not to be kept and not the spared one of its folder.
    void forEachRemovable(const QStringList& needed,
                          const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call) const;

    LocalizationArray pmLocalizations_;
    std::vector<LocalizationArray> pmLocalizationsDict_;
    std::unordered_map<std::string, std::size_t> groupOfKey_;  ///< indexes into the above
    std::optional<Counted> counted_;                           ///< none after the localizations have changed
    quint64 ncanKeepSpace_ = 0;
    quint64 ncanKeepSpaceSel_ = 0;
    quint64 ncanCleanLocs_ = 0;
    std::filesystem::path pAppName_;
    QString displayName_;
};

}  // namespace brimvault::engine
