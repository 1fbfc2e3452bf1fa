#pragma once

#include "engine/notification/Notification.h"
#include "engine/notification/Notifications.h"

namespace brimvault::ui {

/// What the last clean could not remove, as its sections told. A value; one thread at a time.
struct NotCleanedDictionaries {
    engine::NotCleanedApplications applications;
    engine::PerSection<engine::NotRemovedDictionary> files;  ///< none for Language Resources

    /// Takes what a section's clean-finished notification brings; that of a single removal brings nothing.
    void take(engine::Section section, const engine::Notification& heard) {
        using Reasons = engine::NotRemovedDictionary;
        using Counts = engine::NotCleanedApplications;
        const auto key = engine::vocabulary(section).notCleanedKey;
        if (const auto counts = engine::getDictionaryPropfromNotification<Counts>(heard, key)) {
            applications = *counts;
        }
        if (const auto reasons = engine::getDictionaryPropfromNotification<Reasons>(heard, key)) {
            files[section] = *reasons;
        }
    }
};

}  // namespace brimvault::ui
