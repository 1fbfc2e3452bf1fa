#include "platform/linux/BusCall.h"

#include <algorithm>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <string>
#include <thread>

#include "platform/System.h"

namespace brimvault::platform {

namespace {

// Cancels what is done with it once a stop is requested.
class StopCancellable {
public:
    explicit StopCancellable(const std::stop_token& stop)
        : cancellable_(g_cancellable_new()), callback_(stop, Cancel{cancellable_.get()}) {}
    [[nodiscard]] GCancellable* get() const { return cancellable_.get(); }

private:
    struct Cancel {
        GCancellable* cancellable;
        void operator()() const noexcept { g_cancellable_cancel(cancellable); }
    };
    const Owned<GCancellable, g_object_unref> cancellable_;
    std::stop_callback<Cancel> callback_;
};

using Clock = std::chrono::steady_clock;

// Cancels at the deadline, unless it is destroyed before.
class Timer {
public:
    Timer(GCancellable* cancellable, Clock::time_point deadline)
        : thread_([cancellable, deadline](const std::stop_token& destroyed) {
              std::mutex mutex;
              std::unique_lock lock(mutex);
              const auto isDestroyed = [&] { return destroyed.stop_requested(); };
              if (!std::condition_variable_any().wait_until(lock, destroyed, deadline, isDestroyed)) {
                  g_cancellable_cancel(cancellable);
              }
          }) {}

private:
    const std::jthread thread_;
};

// Giving it back closes it, on a thread of GDBus's that nobody waits for.
using Connection = Owned<GDBusConnection, g_object_unref>;

Variant call(const Connection& connection, const BusRequest& request, Clock::time_point deadline,
             GCancellable* cancellable) {
    constexpr std::chrono::milliseconds maxTimeout{std::numeric_limits<int>::max()};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const auto timeout = std::clamp(left, std::chrono::milliseconds(0), maxTimeout);
    return Variant(g_dbus_connection_call_sync(connection.get(), request.service, request.object, request.interface,
                                               request.method, request.arguments.get(), nullptr, G_DBUS_CALL_FLAGS_NONE,
                                               static_cast<int>(timeout.count()), cancellable, nullptr));
}

// The bus itself answers.
bool callBus(const Connection& connection, const char* interface, const char* method, Clock::time_point deadline,
             GCancellable* cancellable) {
    const BusRequest request{"org.freedesktop.DBus", "/org/freedesktop/DBus", interface, method, nullptr};
    return call(connection, request, deadline, cancellable) != nullptr;
}

// The environment that the program goes by, which a test may have replaced, before that of the process.
std::string addressOf(Bus bus, GCancellable* cancellable) {
    const bool isSession = bus == Bus::session;
    std::string address =
        system().environmentVariable(isSession ? "DBUS_SESSION_BUS_ADDRESS" : "DBUS_SYSTEM_BUS_ADDRESS");
    if (address.empty()) {
        const Owned<char, g_free> found(
            g_dbus_address_get_for_bus_sync(isSession ? G_BUS_TYPE_SESSION : G_BUS_TYPE_SYSTEM, cancellable, nullptr));
        address = found ? found.get() : "";
    }
    return address;
}

// The greeting (Hello) is not left to GDBus, which waits for its reply for 25 seconds whatever is cancelled.
Connection connectTo(Bus bus, Clock::time_point deadline, GCancellable* cancellable) {
    constexpr std::chrono::seconds maxTimeout{5};
    const auto end = std::min(deadline, Clock::now() + maxTimeout);
    const Timer timer(cancellable, end);
    const auto address = addressOf(bus, cancellable);
    Connection connection(g_dbus_connection_new_for_address_sync(
        address.c_str(), G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, nullptr, cancellable, nullptr));
    const bool isOnBus = connection && callBus(connection, "org.freedesktop.DBus", "Hello", end, cancellable);
    return isOnBus ? std::move(connection) : nullptr;
}

}  // namespace

Variant callOnBus(Bus bus, const BusRequest& request, std::chrono::milliseconds timeout,
                  const BusCancellation& cancellation) {
    constexpr std::chrono::milliseconds withdrawalTimeout{500};
    const auto deadline = Clock::now() + timeout;
    const StopCancellable stopped(cancellation.stop);
    const auto connection = connectTo(bus, deadline, stopped.get());
    if (!connection) {
        return nullptr;
    }
    auto answer = call(connection, request, deadline, stopped.get());
    if (!answer && cancellation.stop.stop_requested() && cancellation.withdrawal != nullptr) {
        (void)call(connection, *cancellation.withdrawal, Clock::now() + withdrawalTimeout, nullptr);
    }
    return answer;
}

// The bus is called after the signal, since a flush of the connection knows neither a timeout nor a stop.
void broadcastOnBus(Bus bus, const BusSignal& signal, std::chrono::milliseconds timeout, const std::stop_token& stop) {
    const auto deadline = Clock::now() + timeout;
    const StopCancellable stopped(stop);
    if (const auto connection = connectTo(bus, deadline, stopped.get())) {
        g_dbus_connection_emit_signal(connection.get(), nullptr, signal.object, signal.interface, signal.name,
                                      signal.arguments.get(), nullptr);
        (void)callBus(connection, "org.freedesktop.DBus.Peer", "Ping", deadline, stopped.get());
    }
}

}  // namespace brimvault::platform
