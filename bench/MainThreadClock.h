#pragma once

#include <QApplication>
#include <QEvent>
#include <QMetaEnum>
#include <QString>
#include <chrono>
#include <ctime>
#include <utility>

namespace brimvault::bench {

/// An application that measures how long each event blocks the main thread, nested events included. Main thread.
class MainThreadClock final : public QApplication {
public:
    /// The time for one frame at 60 Hz.
    static constexpr double frameMilliseconds = 16;

    /// In milliseconds.
    struct Durations {
        double longest = 0;
        int overFrame = 0;  ///< events that took more than `frameMilliseconds`
        double total = 0;
        QString longestEvent;  ///< the receiver's class, and the type of the event

        void add(double milliseconds, const QString& name) {
            if (milliseconds > longest) {
                longest = milliseconds;
                longestEvent = name;
            }
            overFrame += milliseconds > frameMilliseconds ? 1 : 0;
            total += milliseconds;
        }
    };
    /// On a busy machine the CPU time shows what the window itself does.
    struct Figures {
        Durations elapsed;  ///< wall-clock time
        Durations worked;   ///< CPU time
        int events = 0;
    };

    using QApplication::QApplication;

    /// The figures of the events since the last call.
    Figures takeFigures() { return std::exchange(figures_, Figures()); }

    bool notify(QObject* receiver, QEvent* event) override {
        if (inside_) {
            return QApplication::notify(receiver, event);
        }
        inside_ = true;
        const QString name = describe(receiver, event);  // before the call, which may destroy both
        const double cpuBefore = cpuMilliseconds();
        const auto before = std::chrono::steady_clock::now();
        const bool answer = QApplication::notify(receiver, event);
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - before;
        inside_ = false;
        figures_.worked.add(cpuMilliseconds() - cpuBefore, name);
        figures_.elapsed.add(taken.count(), name);
        ++figures_.events;
        return answer;
    }

private:
    static QString describe(const QObject* receiver, const QEvent* event) {
        const char* kind = QMetaEnum::fromType<QEvent::Type>().valueToKey(event->type());
        const QString number = QString::number(event->type());
        return QString::fromLatin1(receiver->metaObject()->className()).section(QLatin1String("::"), -1) +
               QLatin1Char(' ') + (kind == nullptr ? number : QString::fromLatin1(kind));
    }

    static double cpuMilliseconds() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
    }

    bool inside_ = false;
    Figures figures_;
};

}  // namespace brimvault::bench
