#pragma once

#include "engine/Operation.h"
#include "engine/OperationQueue.h"
#include "engine/Section.h"

namespace brimvault::engine {

/// An operation that works on one section; drivers tell their operations apart by it. Any thread.
class SectionOperation : public Operation {
public:
    explicit SectionOperation(Section section) : section_(section) {}
    [[nodiscard]] Section section() const { return section_; }

private:
    const Section section_;
};

/// Cancels every operation of the section on the queue, then waits for each to finish. Any thread; blocks it.
void cancelSectionAndWait(OperationQueue& queue, Section section);

}  // namespace brimvault::engine
