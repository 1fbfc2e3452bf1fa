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
/// touches the model or the window hands over to the main thread without waiting: `addMainThreadObserver` does so.
///
/// Once an Observation has ended its handler is not running and will not run. Two exceptions: a handler may end its own
/// observation; and what was already handed over to the main thread still runs there while its context lives. A handler
/// must not wait for another thread that posts or ends observations.
class NotificationCenter {
public:
    using Handler = std::function<void(const Notification&)>;

    /// Observes for as long as it lives. To outlive the center is allowed.
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

    /// While it lives, what its thread posts can be recalled: once a stop is requested, nobody hears it, not what was
    /// handed over to the main thread before either.
    class [[nodiscard]] Recallable {
    public:
        explicit Recallable(std::stop_token recalled);
        Recallable(const Recallable&) = delete;
        Recallable& operator=(const Recallable&) = delete;
        ~Recallable();

    private:
        std::stop_token before_;
    };

    /// The one of the process.
    static NotificationCenter& defaultCenter();

    Observation addObserver(const QString& name, Handler handler);
    /// The handler runs on the thread of the context (the main thread's objects live on the main thread), some time
    /// after the posting; not any more once the context is gone. The observation ends before the context does. Large
    /// arrays that nobody else holds by then are freed on another thread.
    Observation addMainThreadObserver(const QString& name, QObject* context, Handler handler);

    void post(const QString& name, const UserInfo& userInfo = {});

private:
    std::mutex mutex_;
    std::map<QString, std::vector<std::weak_ptr<Observation::Entry>>> observers_;
};

}  // namespace brimvault::engine
