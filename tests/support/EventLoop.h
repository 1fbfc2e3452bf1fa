#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <functional>

namespace brimvault::tests {

/// Runs the main thread's event loop until the condition holds. False after a time that nothing in a test takes: the
/// condition will not come.
[[nodiscard]] inline bool runUntil(const std::function<bool()>& condition) {
    constexpr qint64 neverInATest = 30'000;  // milliseconds
    const QDeadlineTimer deadline(neverInATest);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

/// Runs what has been handed over to the main thread so far.
inline void runPending() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

}  // namespace brimvault::tests
