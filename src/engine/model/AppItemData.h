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

/// One application that has localizations. Its counters follow from the languages to keep and are those of the last
/// `recalcKeepSpaceForLocales`.
///
/// Localizations are grouped by the folder that holds them, groups and members in the order of discovery; what is
/// counted and what is removed come from one walk over them, so the one that always stays in each folder is the same:
/// where none is to be kept, one that is near to what the user reads.
///
/// The scan's thread until it is posted, then the main thread; a clean calls `itemsToClean` on its own thread, while
/// nothing on the main thread changes the localizations: those change when its end is heard.
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

    /// Recomputes what cleaning would free when the given languages are kept. With none given, or fewer than two
    /// localizations, nothing can be freed and the count of languages stays as it was.
    void recalcKeepSpaceForLocales(const QStringList& needed);
    /// What to remove now; empty when nothing may go.
    [[nodiscard]] LocalizationArray itemsToClean(const QStringList& needed) const;
    /// Forgets what was removed, then recomputes.
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
    /// For what the counters were computed.
    struct Counted {
        QStringList needed;
        bool isDeletable;
        bool operator==(const Counted&) const = default;
    };

    void recalcLocalizationsDict();
    void addToGroup(const std::shared_ptr<LocalizationItem>& item);
    /// Calls with every localization that is not to be kept and not the last one of its folder.
    void forEachRemovable(const QStringList& needed,
                          const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call) const;

    LocalizationArray pmLocalizations_;
    std::vector<LocalizationArray> pmLocalizationsDict_;
    std::unordered_map<std::string, std::size_t> groupOfKey_;  ///< places in the above
    std::optional<Counted> counted_;                           ///< none once the localizations are others
    quint64 ncanKeepSpace_ = 0;
    quint64 ncanKeepSpaceSel_ = 0;
    quint64 ncanCleanLocs_ = 0;
    std::filesystem::path pAppName_;
    QString displayName_;
};

}  // namespace brimvault::engine
