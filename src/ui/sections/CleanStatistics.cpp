#include "ui/sections/CleanStatistics.h"

#include <limits>

#include "ui/services/DefaultsKeys.h"

namespace brimvault::ui {

void CleanStatistics::cleanFinished(quint64 remaining) {
    hasFreed_ = lastCleanedSize_ > remaining;
    if (hasFreed_) {
        addCleanedSizeToDefaults(lastCleanedSize_ - remaining);
        defaults_.increase(defaults_key::cleanNumber);
    }
}

void CleanStatistics::addCleanedSizeToDefaults(quint64 freed) {
    const quint64 before = defaults_.number(defaults_key::totalCleanedSize).value_or(0);
    constexpr quint64 maxTotal = std::numeric_limits<quint64>::max();
    defaults_.setNumber(defaults_key::totalCleanedSize, freed > maxTotal - before ? maxTotal : before + freed);
    defaults_.setNumber(defaults_key::lastCleanedSize, freed);
}

}  // namespace brimvault::ui
