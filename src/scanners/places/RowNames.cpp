#include "scanners/places/RowNames.h"

namespace brimvault::scanners {

namespace {

std::optional<platform::DesktopEntry> entryOf(const PlaceRow& row, platform::DesktopEntries& entries) {
    if (!row.profile.empty() || (row.rule->shape == PlaceShape::files && row.package.empty())) {
        return entries.findByClassOrProgram(row.application);
    }
    // The entries of Snap are named after the snap and the program, which have one name for a snap of one program.
    return entries.find(row.running.snap ? row.application + "_" + row.application : row.application);
}

const char* systemOf(const PlaceRow& row) {
    return row.running.flatpak ? " (Flatpak)" : row.running.snap ? " (Snap)" : "";
}

}  // namespace

RowName nameOf(const PlaceRow& row, platform::DesktopEntries& entries) {
    RowName name{row.path.filename(), row.application, {}};
    if (!row.application.empty()) {
        const auto entry = entryOf(row, entries);
        name.program = entry ? entry->name.toStdString() : row.application;
        name.title = entry ? name.program + systemOf(row) : row.application;
        name.desktopEntry = entry ? entry->identifier : "";
    }
    if (*row.rule->title != '\0') {
        const bool isPartOfProfile = row.rule->base == PlaceBase::profile;
        name.title = isPartOfProfile ? name.title + " (" + row.rule->title + ")" : row.rule->title;
    }
    return name;
}

RowName nameOf(const CacheNames::Entry& entry, const PlaceRule* rule, platform::DesktopEntries& entries) {
    RowName name{entry.name, {}, {}};
    if (rule != nullptr && (rule->running.mozilla || rule->running.chromium)) {
        if (const auto installed = entries.findByClassOrProgram(*rule->title != '\0' ? rule->title : entry.name)) {
            name.title = installed->name.toStdString();
            name.desktopEntry = installed->identifier;
        }
    }
    if (!entry.holder.empty()) {
        name.title = std::string(entry.holder) + " \u2013 " + entry.name;
    }
    return name;
}

}  // namespace brimvault::scanners
