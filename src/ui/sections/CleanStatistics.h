#pragma once

#include <QtGlobal>

#include "platform/UserDefaults.h"

namespace brimvault::ui {

/// How many bytes the last clean and all cleans have freed, and how many cleans there were, as the settings keep it.
/// What is selected before a clean and no more after it counts as freed. Main thread.
class CleanStatistics {
public:
    explicit CleanStatistics(platform::UserDefaults& defaults) : defaults_(defaults) {}

    /// A clean begins; the bytes are all that is selected.
    void cleanStarted(quint64 selected) { lastCleanedSize_ = selected; }
    /// It has ended; the bytes are still selected.
    void cleanFinished(quint64 remaining);
    /// Whether the last clean has freed anything.
    [[nodiscard]] bool hasFreed() const { return hasFreed_; }

private:
    void addCleanedSizeToDefaults(quint64 freed);

    platform::UserDefaults& defaults_;
    quint64 lastCleanedSize_ = 0;
    bool hasFreed_ = false;
};

}  // namespace brimvault::ui
