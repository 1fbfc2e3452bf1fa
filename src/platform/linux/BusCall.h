#pragma once

#include <QDBusMessage>
#include <chrono>
#include <functional>
#include <optional>

namespace brimvault::platform {

enum class Bus { session, system };

/// Sends the request on a connection of its own, so that a bus that has come or gone concerns nothing but this request,
/// and waits for the answer. None without a bus, for an error, after the time, and once `givesUp` answers true. Any
/// thread but the main one.
[[nodiscard]] std::optional<QDBusMessage> callOnBus(Bus bus, const QDBusMessage& request,
                                                    std::chrono::milliseconds limit,
                                                    const std::function<bool()>& givesUp = {});

}  // namespace brimvault::platform
