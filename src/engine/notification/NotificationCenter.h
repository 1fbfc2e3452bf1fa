#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

#include "engine/notification/Notification.h"

namespace brimvault::engine {

/// Carries notifications between parts that do not know each other. Any thread may post and observe.
///
/// Observers run on the posting thread, before `post` returns, in the order in which they were added. An observer that
/// touches the model or the window must be queued for the main thread: `addMainThreadObserver` does so.
///
/// Once an Observation has ended its handler is not running and will not run. Two exceptions: a handler may end its own
/// observation; and a call that is already queued for the main thread still runs if its context lives. To avoid
/// deadlock, a handler must not wait for another thread that posts or ends observations.
class NotificationCenter {
public:
    using Handler = std::function<void(const Notification&)>;

    /// Observes while it lives. May outlive the center.
    class [[nodiscard]] Observation {
    public:
        Observation() = default;
        Observation(Observation&&) noexcept = default;
        Observation& operator=(Observation&& other) noexcept;
        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;
        ~Observation() { end(); }
        void end();

    private:
        friend class NotificationCenter;
        struct Entry;
        explicit Observation(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
        std::shared_ptr<Entry> entry_;
    };

    /// While it lives, a stop request drops what its thread posts, including what is already queued for the main
    /// thread.
    class [[nodiscard]] Recallable {
    public:
        explicit Recallable(std::stop_token recalled);
        Recallable(const Recallable&) = delete;
        Recallable& operator=(const Recallable&) = delete;
        ~Recallable();

    private:
        std::stop_token before_;
    };

    /// The process-wide instance.
    static NotificationCenter& defaultCenter();

    Observation addObserver(const QString& name, Handler handler);
    /// The handler is queued on the event loop of the context's thread, the main thread, and dropped if the context is
    /// destroyed first. The observation must end before the context does. Large arrays to which the notification has
    /// the last reference are freed on another thread.
    Observation addMainThreadObserver(const QString& name, QObject* context, Handler handler);

    void post(const QString& name, const UserInfo& userInfo = {});

private:
    std::mutex mutex_;
    std::map<QString, std::vector<std::weak_ptr<Observation::Entry>>> observers_;
};

}  // namespace brimvault::engine
