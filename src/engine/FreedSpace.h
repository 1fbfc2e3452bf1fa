#pragma once

#include <QStringList>
#include <QtGlobal>
#include <algorithm>

namespace brimvault::engine {

/// What a clean has freed, measured on the volumes concerned; those that did not answer are left out of all figures. In
/// bytes. A value.
struct FreedSpace {
    quint64 selected = 0;       ///< what was to be freed
    quint64 removed = 0;        ///< the part of it that has gone
    quint64 freed = 0;          ///< never more than was selected
    QStringList programs = {};  ///< that still use what has gone, if the difference is worth telling
    qsizetype emptied = 0;      ///< files that were emptied and not removed, on whatever volume

    /// Removed and not freed: a program holds it open, or another file, a snapshot for instance, shares its blocks.
    [[nodiscard]] quint64 held() const { return removed - std::min(removed, freed); }
    /// Below these figures the difference may come from what other programs write meanwhile.
    [[nodiscard]] bool isDifferenceWorthTelling() const {
        constexpr quint64 minBytes = 1000UL * 1000;
        constexpr quint64 part = 20;
        return held() >= minBytes && held() >= removed / part;
    }
    bool operator==(const FreedSpace&) const = default;
};

}  // namespace brimvault::engine
