#pragma once

#include "platform/System.h"

namespace brimvault::platform {

/// Puts another system in the place of the real one for as long as it lives. For tests; while no other thread reads it.
class SubstituteSystem {
public:
    explicit SubstituteSystem(System system);
    SubstituteSystem(const SubstituteSystem&) = delete;
    SubstituteSystem& operator=(const SubstituteSystem&) = delete;
    ~SubstituteSystem();

private:
    System system_;
    const System* before_;
};

}  // namespace brimvault::platform
