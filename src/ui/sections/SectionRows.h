#pragma once

#include <QCoreApplication>
#include <QLatin1String>
#include <QString>
#include <array>

#include "engine/Section.h"

namespace brimvault::ui {

/// One row of the section list. The order of the rows is the window's own and differs from the engine's.
struct SectionRow {
    engine::Section section;
    const char* title;       ///< untranslated; `sectionTitle` is for people
    QLatin1String icon;      ///< picture; with "Sel" appended, the one on a selected row
    QLatin1String checkKey;  ///< key of the check state in the user's defaults
    bool checkedByDefault;   ///< what may be wanted later is not ticked for the user
};

inline constexpr int sectionRowCount = 5;

/// Rows 0 to 4, from the top.
inline const std::array<SectionRow, sectionRowCount>& sectionRows() {
    using engine::Section;
    using Name = QLatin1String;
    static const std::array<SectionRow, sectionRowCount> rows = {{
        {Section::caches, QT_TRANSLATE_NOOP("Section", "Caches"), Name("iccache"), Name("keyCacheCheck"), true},
        {Section::languageResources, QT_TRANSLATE_NOOP("Section", "Language Resources"), Name("iclangs"),
         Name("keyAppsCheck"), true},
        {Section::logs, QT_TRANSLATE_NOOP("Section", "Logs"), Name("icon_Logs"), Name("keyLogsCheck"), true},
        {Section::downloads, QT_TRANSLATE_NOOP("Section", "Downloads"), Name("icdwn"), Name("keyDwnsCheck"), false},
        {Section::trash, QT_TRANSLATE_NOOP("Section", "Trash"), Name("icbin"), Name("keyTrashCheck"), true},
    }};
    return rows;
}

[[nodiscard]] inline QString sectionTitle(const SectionRow& row) {
    return QCoreApplication::translate("Section", row.title);
}

}  // namespace brimvault::ui
