#include "engine/model/PlaceTexts.h"

#include <QCoreApplication>
#include <QLocale>

#include "platform/text/DisplayText.h"

namespace brimvault::engine {

using platform::RootPlace;
using platform::RootRefusal;

namespace {

QString shown(const std::filesystem::path& path) { return platform::displayText(path); }

bool isLinked(const RootPlace& place) { return place.resolved != place.named; }

bool isRefused(const RootPlace& place) {
    return place.refusal != RootRefusal::none && place.refusal != RootRefusal::missing;
}

// Why a folder is skipped: for what it is itself, or for what it holds.
QString reason(const RootPlace& place) {
    const bool isIt = place.obstacle == place.resolved;
    const QString obstacle = shown(place.obstacle);
    switch (place.refusal) {
        case RootRefusal::leadsNowhere:
            return QCoreApplication::translate("Places", "the link leads to nothing; is a disk missing?");
        case RootRefusal::noFolder:
            return QCoreApplication::translate("Places", "it is no folder");
        case RootRefusal::homeFolder:
            return isIt ? QCoreApplication::translate("Places", "it is your home folder")
                        : QCoreApplication::translate("Places", "it holds your home folder");
        case RootRefusal::userFolder:
            return isIt ? QCoreApplication::translate("Places", "it is a folder for your own files")
                        : QCoreApplication::translate("Places", "it holds a folder for your own files, %1")
                              .arg(obstacle);
        case RootRefusal::otherRootFolder:
            return isIt ? QCoreApplication::translate("Places", "another section looks there")
                        : QCoreApplication::translate("Places", "it holds a folder where a section looks, %1")
                              .arg(obstacle);
        default:
            return QCoreApplication::translate("Places", "it cannot be read");
    }
}

QString way(const RootPlace& place) {
    return isLinked(place) ? QCoreApplication::translate("Places", "%1, which leads to %2")
                                 .arg(shown(place.named), shown(place.resolved))
                           : shown(place.named);
}

QString line(const RootPlace& place) {
    if (isRefused(place)) {
        return QCoreApplication::translate("Places", "Not looked into: %1 (%2)").arg(way(place), reason(place));
    }
    return way(place);
}

template <typename Wanted>
QString lines(const Places& places, Wanted wanted) {
    QStringList found;
    for (const auto& place : places) {
        if (wanted(*place)) {
            found.append(line(*place));
        }
    }
    return found.join(QLatin1Char('\n'));
}

}  // namespace

QString placeTexts::all(const Places& places) {
    const QString there = lines(places, [](const RootPlace& place) { return place.refusal != RootRefusal::missing; });
    return there.isEmpty() ? there : QCoreApplication::translate("Places", "Looks in:") + QLatin1Char('\n') + there;
}

QString placeTexts::unusual(const Places& places) {
    return lines(places, [](const RootPlace& place) {
        return isRefused(place) || (place.refusal == RootRefusal::none && isLinked(place));
    });
}

QString placeTexts::refused(const Places& places) { return lines(places, isRefused); }

QStringList placeTexts::ofTargets(const FFItem& item) {
    constexpr std::size_t maxLines = 7;
    const auto paths = item.removalPaths();
    const bool all = paths.size() <= maxLines;
    QStringList named;
    for (std::size_t path = 0; path < (all ? paths.size() : maxLines - 1); ++path) {
        named.append(shown(paths[path]));
    }
    if (!all) {
        named.append(QCoreApplication::translate("Places", "and %1 more")
                         .arg(QLocale().toString(static_cast<qsizetype>(paths.size()) - named.size())));
    }
    return named;
}

}  // namespace brimvault::engine
