#include "platform/linux/BusCall.h"

#include <string>

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

struct Close {
    void operator()(GDBusConnection* connection) const {
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
    }
};
using Connection = std::unique_ptr<GDBusConnection, Close>;

// The environment that the program goes by, which a test may have replaced, before that of the process.
Connection connectTo(Bus bus, GCancellable* cancellable) {
    const bool isSession = bus == Bus::session;
    std::string address =
        system().environmentVariable(isSession ? "DBUS_SESSION_BUS_ADDRESS" : "DBUS_SYSTEM_BUS_ADDRESS");
    if (address.empty()) {
        const Owned<char, g_free> found(
            g_dbus_address_get_for_bus_sync(isSession ? G_BUS_TYPE_SESSION : G_BUS_TYPE_SYSTEM, cancellable, nullptr));
        address = found ? found.get() : "";
    }
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return Connection(g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, cancellable, nullptr));
}

Variant call(GDBusConnection* connection, const BusRequest& request, std::chrono::milliseconds timeout,
             GCancellable* cancellable) {
    return Variant(g_dbus_connection_call_sync(connection, request.service, request.object, request.interface,
                                               request.method, request.arguments.get(), nullptr, G_DBUS_CALL_FLAGS_NONE,
                                               static_cast<int>(timeout.count()), cancellable, nullptr));
}

}  // namespace

Variant callOnBus(Bus bus, const BusRequest& request, std::chrono::milliseconds timeout,
                  const BusCancellation& cancellation) {
    constexpr std::chrono::seconds withdrawalTimeout{1};
    const StopCancellable stopped(cancellation.stop);
    const auto connection = connectTo(bus, stopped.get());
    if (!connection) {
        return nullptr;
    }
    auto answer = call(connection.get(), request, timeout, stopped.get());
    if (!answer && cancellation.stop.stop_requested() && cancellation.withdrawal != nullptr) {
        (void)call(connection.get(), *cancellation.withdrawal, withdrawalTimeout, nullptr);
    }
    return answer;
}

void broadcastOnBus(Bus bus, const char* object, const char* interface, const char* signal, const Variant& arguments) {
    if (const auto connection = connectTo(bus, nullptr)) {
        g_dbus_connection_emit_signal(connection.get(), nullptr, object, interface, signal, arguments.get(), nullptr);
        g_dbus_connection_flush_sync(connection.get(), nullptr, nullptr);
    }
}

}  // namespace brimvault::platform
