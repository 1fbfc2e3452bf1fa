#pragma once

#include <QTimer>
#include <functional>

namespace brimvault::ui {

/// Keeps a stream of changes, such as a scan brings, from flooding those who are told of them: the first is told at
/// once, those that follow a few times a second, by what holds then. The last one is always told. Main thread.
class Announcer final {
public:
    /// The function tells of what holds now.
    explicit Announcer(std::function<void()> announce);

    void changed();
    /// Tells at once of what has changed and was not told yet.
    void tellPending();

private:
    void announceNow();

    std::function<void()> announce_;
    QTimer pause_;
    bool changedMeanwhile_ = false;
};

}  // namespace brimvault::ui
