#pragma once

#include <QStringList>
#include <QtGlobal>
#include <string>
#include <vector>

#include "app/scan/SectionNames.h"
#include "engine/model/DataMan.h"
#include "engine/model/ItemNote.h"

namespace brimvault::app {

/// An item that a scan has found, as it is printed. Paths are exact bytes.
struct Finding {
    std::string rule;  ///< what found it: a rule's identifier, or the section's
    std::string path;
    std::vector<std::string> targets;  ///< what a clean would remove, sorted; empty where that is the path itself
    quint64 bytes = 0;
    quint64 frees = 0;  ///< bytes on disk
    bool isTicked = false;
    bool needsAdministrator = false;
    engine::ItemNote note = engine::ItemNote::none;
    QString noteArgument;
};

struct SectionFindings {
    SectionName name;
    std::vector<Finding> items;  ///< the largest first, and those of one size in the order of their paths' bytes

    /// The sum of the items.
    [[nodiscard]] quint64 bytes() const;
};

/// What the model has of a section, as far as it has so many bytes or more; with the languages that a clean would keep.
/// Main thread.
[[nodiscard]] SectionFindings findingsOf(const engine::DataMan& model, const SectionName& name, quint64 minBytes,
                                         const QStringList& keptLanguages);

}  // namespace brimvault::app
