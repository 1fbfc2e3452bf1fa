#include "engine/notification/NotificationCenter.h"

#include <QMetaObject>
#include <utility>
#include <variant>

#include "engine/DeleteInBackground.h"

namespace brimvault::engine {

namespace {

// Attached to what this thread posts. The default has no source, so it never stops.
thread_local std::stop_token recalledHere;

void deleteContents(UserInfo& userInfo) {
    for (InfoValue& value : userInfo) {
        std::visit(
            [](auto& contents) {
                if constexpr (requires { contents.size(); }) {
                    deleteInBackground(std::move(contents));
                }
            },
            value);
    }
}

// A copy for the main thread, which as a rule drops it last, and with it perhaps the last reference to hundreds of
// thousands of items. They are freed on a pool thread, wherever the copy is dropped, heard or not.
std::shared_ptr<const Notification> copyForMainThread(const Notification& notification) {
    return {new Notification(notification), [](Notification* copy) {
                const std::unique_ptr<Notification> last(copy);
                deleteContents(last->userInfo);
            }};
}

}  // namespace

NotificationCenter::Recallable::Recallable(std::stop_token recalled)
    : before_(std::exchange(recalledHere, std::move(recalled))) {}

NotificationCenter::Recallable::~Recallable() { recalledHere = std::move(before_); }

// The mutex is held while the handler runs, so that `end` waits for a handler on another thread. It is recursive, so
// that a handler may post what it observes, or end its own observation.
struct NotificationCenter::Observation::Entry {
    std::recursive_mutex mutex;
    bool ended = false;
    Handler handler;
};

NotificationCenter::Observation& NotificationCenter::Observation::operator=(Observation&& other) noexcept {
    if (this != &other) {
        end();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

void NotificationCenter::Observation::end() {
    if (entry_) {
        const std::lock_guard guard(entry_->mutex);
        entry_->ended = true;
    }
    entry_.reset();
}

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

NotificationCenter::Observation NotificationCenter::addObserver(const QString& name, Handler handler) {
    auto entry = std::make_shared<Observation::Entry>();
    entry->handler = std::move(handler);
    const std::lock_guard guard(mutex_);
    auto& observers = observers_[name];
    std::erase_if(observers, [](const auto& observer) { return observer.expired(); });
    observers.push_back(entry);
    return Observation(std::move(entry));
}

NotificationCenter::Observation NotificationCenter::addMainThreadObserver(const QString& name, QObject* context,
                                                                          Handler handler) {
    return addObserver(name, [context, shared = std::move(handler)](const Notification& notification) {
        QMetaObject::invokeMethod(
            context,
            [shared, heard = copyForMainThread(notification)] {
                if (!heard->recalled.stop_requested()) {
                    shared(*heard);
                }
            },
            Qt::QueuedConnection);
    });
}

void NotificationCenter::post(const QString& name, const UserInfo& userInfo) {
    if (recalledHere.stop_requested()) {
        return;
    }
    std::vector<std::weak_ptr<Observation::Entry>> observers;
    {
        const std::lock_guard guard(mutex_);
        if (const auto found = observers_.find(name); found != observers_.end()) {
            observers = found->second;
        }
    }
    const Notification notification{name, userInfo, recalledHere};
    for (const auto& observer : observers) {
        if (const auto entry = observer.lock()) {
            const std::lock_guard guard(entry->mutex);
            if (!entry->ended) {
                entry->handler(notification);
            }
        }
    }
}

}  // namespace brimvault::engine
