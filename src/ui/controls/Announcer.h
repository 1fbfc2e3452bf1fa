#pragma once

#include <QTimer>
#include <functional>

namespace brimvault::ui {

/// Throttles accessibility events: the first change is announced at once, later ones at most every 250 ms, and the last
/// state always. Main thread.
class Announcer final {
public:
    /// The callback announces the present state.
    explicit Announcer(std::function<void()> announce);

    void changed();
    /// Announces a pending change without waiting.
    void flush();

private:
    void announceNow();

    std::function<void()> announce_;
    QTimer interval_;
    bool pending_ = false;
};

}  // namespace brimvault::ui
