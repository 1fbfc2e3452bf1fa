#pragma once

#include <QDBusMessage>
#include <chrono>
#include <functional>
#include <optional>

namespace brimvault::platform {

enum class Bus { session, system };

/// How a request is given up before it is answered.
struct GivingUp {
    std::function<bool()> isWanted;          ///< asked time and again
    std::optional<QDBusMessage> withdrawal;  ///< what is sent then, by the same connection
};

/// Sends the request on a connection of its own, so that a bus that has come or gone concerns nothing but this request,
/// and waits for the answer. None without a bus, for an error, after the time, and once it is given up. Any thread but
/// the main one.
[[nodiscard]] std::optional<QDBusMessage> callOnBus(Bus bus, const QDBusMessage& request,
                                                    std::chrono::milliseconds limit, const GivingUp& givingUp = {});

/// Sends a signal likewise; nothing comes back. Any thread but the main one.
void sendOnBus(Bus bus, const QDBusMessage& signal);

}  // namespace brimvault::platform
