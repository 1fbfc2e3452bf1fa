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
        // A runnable may be copied: whichever copy goes last holds nothing by then.
        QThreadPool::globalInstance()->start(
            [last = std::make_shared<Container>(std::move(held))] { *last = Container(); });
    }
}

}  // namespace brimvault::engine
