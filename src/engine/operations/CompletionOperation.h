#pragma once

#include <functional>
#include <utility>

#include "engine/operations/Operation.h"

namespace brimvault::engine {

/// No work of its own: finishes when everything that it depends on has, and then calls what it was given, also after
/// it was cancelled.
class CompletionOperation final : public Operation {
public:
    explicit CompletionOperation(std::function<void()> block) { setCompletionBlock(std::move(block)); }

protected:
    void main() override {}
};

}  // namespace brimvault::engine
