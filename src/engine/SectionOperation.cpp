#include "engine/SectionOperation.h"

namespace brimvault::engine {

void cancelSectionAndWait(OperationQueue& queue, Section section) {
    queue.cancelAndWait([section](const Operation& operation) {
        const auto* ofSection = dynamic_cast<const SectionOperation*>(&operation);
        return ofSection != nullptr && ofSection->section() == section;
    });
}

}  // namespace brimvault::engine
