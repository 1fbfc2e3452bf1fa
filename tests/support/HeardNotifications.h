#pragma once

#include <QString>
#include <QStringList>
#include <initializer_list>
#include <mutex>
#include <vector>

#include "engine/notification/NotificationCenter.h"

namespace brimvault::tests {

/// Keeps what is posted under the names for as long as it lives. Any thread.
class HeardNotifications {
public:
    HeardNotifications(std::initializer_list<QString> names) {
        for (const auto& name : names) {
            observations_.push_back(
                engine::NotificationCenter::defaultCenter().addObserver(name, [this](const auto& notification) {
                    const std::lock_guard guard(mutex_);
                    heard_.push_back(notification);
                }));
        }
    }

    [[nodiscard]] std::vector<engine::Notification> all() const {
        const std::lock_guard guard(mutex_);
        return heard_;
    }
    [[nodiscard]] QStringList names() const {
        QStringList names;
        for (const auto& notification : all()) {
            names.append(notification.name);
        }
        return names;
    }
    [[nodiscard]] bool has(const QString& name) const { return names().contains(name); }
    /// The last one of the name; an empty one when there was none.
    [[nodiscard]] engine::Notification last(const QString& name) const {
        engine::Notification found;
        for (const auto& notification : all()) {
            found = notification.name == name ? notification : found;
        }
        return found;
    }

private:
    mutable std::mutex mutex_;
    std::vector<engine::Notification> heard_;
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::tests
