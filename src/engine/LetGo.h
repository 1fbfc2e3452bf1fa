#pragma once

#include <QThreadPool>
#include <memory>
#include <utility>

#include "platform/FreeMemory.h"

namespace brimvault::engine {

/// Frees what may be the last to hold very many items on another thread: it takes longer than the main thread has. A
/// few are freed at once. Any thread.
template <typename Container>
void letGo(Container held) {
    constexpr auto few = 1000;
    if (held.size() > few) {
        // A runnable is copied; what it holds is freed before the memory is given back, not with its last copy.
        QThreadPool::globalInstance()->start([last = std::make_shared<Container>(std::move(held))]() mutable {
            *last = Container();
            platform::giveBackFreeMemory();
        });
    }
}

}  // namespace brimvault::engine
