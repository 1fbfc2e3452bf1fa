#include "engine/operations/SectionOperation.h"

namespace brimvault::engine {

bool isOf(const Operation& operation, Section section) {
    const auto* ofSection = dynamic_cast<const SectionOperation*>(&operation);
    return ofSection != nullptr && ofSection->section() == section;
}

void cancelSectionAndWait(OperationQueue& queue, Section section) {
    queue.cancelAndWait([section](const Operation& operation) { return isOf(operation, section); });
}

}  // namespace brimvault::engine
