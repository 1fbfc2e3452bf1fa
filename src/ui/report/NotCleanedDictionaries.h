#pragma once

#include "engine/notification/Notification.h"
#include "engine/notification/Notifications.h"

namespace brimvault::ui {

/// Collects what the sections of the last clean could not remove. A value; one thread at a time.
struct NotCleanedDictionaries {
    engine::NotCleanedApplications applications;
    engine::PerSection<engine::NotRemovedDictionary> files;  ///< Language Resources stays empty

    /// Takes the reasons from a section's "cleanFinished" notification; after a single removal it has none.
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
