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
#include "engine/model/LocalizationItem.h"

namespace brimvault::engine {

/// One application that has localizations. Its counters depend on the languages to keep, as of the last
/// `recalcKeepSpaceForLocales`.
///
/// Localizations are grouped by the folder that holds them, in the order of discovery. `engine/model/KeptLocalizations`
/// decides which of a folder stay; counting and removing both ask it, so that they spare the same ones.
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
    /// A file with names in several localizations is left out.
    [[nodiscard]] quint64 frees() const override { return frees_; }

private:
    /// The input of the counters.
    struct Counted {
        QStringList needed;
        bool isDeletable;
        bool operator==(const Counted&) const = default;
    };

    void recalcLocalizationsDict();
    void addToGroup(const std::shared_ptr<LocalizationItem>& item);
    /// Calls for every localization that may go; for none where there are fewer than two, or no language is to be kept.
    void forEachRemovable(const QStringList& needed,
                          const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call) const;

    LocalizationArray pmLocalizations_;
    std::vector<LocalizationArray> pmLocalizationsDict_;
    std::unordered_map<std::string, std::size_t> groupOfKey_;  ///< indexes into pmLocalizationsDict_
    std::optional<Counted> counted_;                           ///< none after the localizations have changed
    quint64 ncanKeepSpace_ = 0;
    quint64 ncanKeepSpaceSel_ = 0;
    quint64 ncanCleanLocs_ = 0;
    quint64 frees_ = 0;
    std::filesystem::path pAppName_;
    QString displayName_;
};

}  // namespace brimvault::engine
