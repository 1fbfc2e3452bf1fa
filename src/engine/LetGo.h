#pragma once

#include <QThreadPool>
#include <memory>
#include <utility>

namespace brimvault::engine {

/// Frees what may be the last to hold very many items on another thread: it takes longer than the main thread has. A
/// few are freed at once. Any thread.
template <typename Container>
void letGo(Container held) {
    constexpr auto few = 1000;
    if (held.size() > few) {
        // A runnable may be copied; the container is not.
        QThreadPool::globalInstance()->start(
            [last = std::make_shared<Container>(std::move(held))]() mutable { last.reset(); });
    }
}

}  // namespace brimvault::engine
