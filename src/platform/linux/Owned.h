#pragma once

#include <memory>

namespace brimvault::platform {

template <auto release>
struct Released {
    template <typename Object>
    void operator()(Object* object) const {
        release(object);
    }
};

/// An object of a C library that is given back by a function of that library.
template <typename Object, auto release>
using Owned = std::unique_ptr<Object, Released<release>>;

}  // namespace brimvault::platform
