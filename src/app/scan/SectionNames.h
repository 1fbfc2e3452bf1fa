#pragma once

#include <QLatin1String>
#include <array>

#include "engine/Section.h"

namespace brimvault::app {

/// A section as the scan prints it.
struct SectionName {
    engine::Section section;
    QLatin1String id;     ///< in options and in JSON: never changed
    QLatin1String title;  ///< for people
};

/// In the window's order, which is that of everything that is printed.
inline constexpr std::array<SectionName, engine::allSections.size()> sectionNames = {{
    {engine::Section::caches, QLatin1String("caches"), QLatin1String("Caches")},
    {engine::Section::languageResources, QLatin1String("languages"), QLatin1String("Language Resources")},
    {engine::Section::logs, QLatin1String("logs"), QLatin1String("Logs")},
    {engine::Section::downloads, QLatin1String("downloads"), QLatin1String("Downloads")},
    {engine::Section::trash, QLatin1String("trash"), QLatin1String("Trash")},
}};

}  // namespace brimvault::app
