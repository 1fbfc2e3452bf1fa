#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <variant>

#include "engine/FreedSpace.h"
#include "engine/ItemArrays.h"
#include "platform/SectionRoots.h"

namespace brimvault::engine {

/// Display name of an item to why it was not removed, in the system's own words.
using NotRemovedDictionary = QMap<QString, QString>;
/// Display name of an application to how many of its language resources were not removed.
using NotCleanedApplications = QMap<QString, int>;
/// Path of an application to what was removed from it.
using CleanedApplications = std::map<std::filesystem::path, LocalizationArray>;

/// A whole number or, as 0 and 1, a boolean one.
using Number = qint64;

/// The folders in which a section looks for its files.
using Places = QList<std::shared_ptr<const platform::RootPlace>>;

struct SharedGroups;

using InfoValue =
    std::variant<Number, Places, ItemArray, ApplicationArray, NotRemovedDictionary, NotCleanedApplications,
                 CleanedApplications, std::shared_ptr<const SharedGroups>, FreedSpace>;
using UserInfo = QHash<QString, InfoValue>;

/// What a notification carries. Copies share their contents; any thread may read one.
struct Notification {
    QString name;
    UserInfo userInfo;
    std::stop_token recalled = {};  ///< after a stop request it is delivered no more
};

/// The value under the key, if it is of this type; each reader below names the types that it is for.
template <typename Value>
[[nodiscard]] std::optional<Value> getPropfromNotification(const Notification& notification, const QString& key) {
    const auto found = notification.userInfo.constFind(key);
    if (found == notification.userInfo.constEnd() || !std::holds_alternative<Value>(*found)) {
        return std::nullopt;
    }
    return std::get<Value>(*found);
}

/// Value is ItemArray or ApplicationArray.
template <typename Value>
[[nodiscard]] std::optional<Value> getArrayPropfromNotification(const Notification& notification, const QString& key) {
    return getPropfromNotification<Value>(notification, key);
}

[[nodiscard]] inline std::optional<Number> getNumberPropfromNotification(const Notification& notification,
                                                                         const QString& key) {
    return getPropfromNotification<Number>(notification, key);
}

/// Value is NotRemovedDictionary, NotCleanedApplications or CleanedApplications.
template <typename Value>
[[nodiscard]] std::optional<Value> getDictionaryPropfromNotification(const Notification& notification,
                                                                     const QString& key) {
    return getPropfromNotification<Value>(notification, key);
}

}  // namespace brimvault::engine
