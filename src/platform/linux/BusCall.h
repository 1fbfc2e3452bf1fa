#pragma once

#include <gio/gio.h>

#include <chrono>
#include <stop_token>

#include "platform/linux/Owned.h"

namespace brimvault::platform {

enum class Bus { session, system };

using Variant = Owned<GVariant, g_variant_unref>;

/// A method call on D-Bus.
struct BusRequest {
    const char* service;
    const char* object;
    const char* interface;
    const char* method;
    Variant arguments;  ///< a tuple
};

/// A signal on D-Bus, to whoever listens.
struct BusSignal {
    const char* object;
    const char* interface;
    const char* name;
    Variant arguments;  ///< a tuple
};

/// How a call ends before it is answered.
struct BusCancellation {
    std::stop_token stop;
    const BusRequest* withdrawal = nullptr;  ///< sent after a stop, on the same connection; null for none
};

/// Sends the request on a connection of its own, so that a bus that has come or gone concerns nothing but this request,
/// and waits for the reply. Null without a bus, for an error, after the timeout, and once a stop is requested, which
/// ends the wait at once; a withdrawal takes half a second at most. The timeout counts from the beginning of the call,
/// and connecting has one of 5 seconds besides, so that a bus that accepts and stays silent holds up nobody. Any thread
/// but the main one.
[[nodiscard]] Variant callOnBus(Bus bus, const BusRequest& request, std::chrono::milliseconds timeout,
                                const BusCancellation& cancellation);

/// Broadcasts a signal likewise, and returns when the bus has taken it. Any thread but the main one.
void broadcastOnBus(Bus bus, const BusSignal& signal, std::chrono::milliseconds timeout, const std::stop_token& stop);

/// The arguments of a request or a signal, from a floating reference.
[[nodiscard]] inline Variant variant(GVariant* floating) { return Variant(g_variant_ref_sink(floating)); }

}  // namespace brimvault::platform
