#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>

namespace brimvault::tests {

/// Runs the main thread's event loop until the condition holds, which another thread may bring about without an event.
/// False after a time that nothing in a test takes.
[[nodiscard]] inline bool runUntil(const std::function<bool()>& condition) {
    constexpr qint64 neverInATest = 30'000;  // milliseconds
    constexpr int betweenLooks = 5;
    const QDeadlineTimer deadline(neverInATest);
    QTimer look;
    look.start(betweenLooks);
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

/// Runs what has been handed over to the main thread so far.
inline void runPending() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

}  // namespace brimvault::tests
