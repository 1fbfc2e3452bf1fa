#pragma once

#include <QString>
#include <QStringList>
#include <filesystem>
#include <memory>

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
    quint64 frees = 0;                                 ///< bytes on disk without what has names elsewhere too

    /// True unless the identifier is among those to keep, compared letter by letter.
    [[nodiscard]] bool shouldBeRemovedWithNeedLangs(const QStringList& needed) const {
        return !needed.contains(plocNameId);
    }
};

}  // namespace brimvault::engine
