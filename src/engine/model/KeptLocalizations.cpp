#include "engine/model/KeptLocalizations.h"

#include <algorithm>

namespace brimvault::engine {

namespace {

QString family(const QString& identifier) { return identifier.section(QLatin1Char('-'), 0, 0); }

// Null if one is kept by its language.
std::shared_ptr<LocalizationItem> fallback(const LocalizationArray& folder, const QStringList& needed) {
    const auto isKept = [&](const auto& item) { return !item->shouldBeRemovedWithNeedLangs(needed); };
    if (std::any_of(folder.begin(), folder.end(), isKept)) {
        return nullptr;
    }
    for (const QString& language : needed) {
        const auto relative = std::find_if(folder.begin(), folder.end(), [&](const auto& item) {
            return family(item->plocNameId) == family(language);
        });
        if (relative != folder.end()) {
            return *relative;
        }
    }
    return folder.last();
}

}  // namespace

void forEachNotKept(const LocalizationArray& folder, const QStringList& needed,
                    const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call) {
    const auto spared = fallback(folder, needed);
    for (const auto& item : folder) {
        if (item != spared && item->shouldBeRemovedWithNeedLangs(needed)) {
            call(item);
        }
    }
}

}  // namespace brimvault::engine
