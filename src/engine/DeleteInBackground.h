#pragma once

#include <QThreadPool>
#include <memory>
#include <utility>

namespace brimvault::engine {

/// Destroys a large container on a pool thread: freeing hundreds of thousands of items would block the window. A small
/// one is destroyed in place. Any thread.
template <typename Container>
void deleteInBackground(Container container) {
    constexpr auto maxInPlace = 1000;
    if (container.size() > maxInPlace) {
        // The pool may copy the function object. The copies share the container, and all find it empty after the call.
        QThreadPool::globalInstance()->start(
            [shared = std::make_shared<Container>(std::move(container))] { *shared = Container(); });
    }
}

}  // namespace brimvault::engine
