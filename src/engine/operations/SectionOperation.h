#pragma once

#include <memory>

#include "engine/Section.h"
#include "engine/model/AgreedItems.h"
#include "engine/model/ItemOutcome.h"
#include "engine/operations/Operation.h"
#include "engine/operations/OperationQueue.h"

namespace brimvault::engine {

/// An operation that works on one section, by which the drivers find it on their queue. Any thread.
class SectionOperation : public Operation {
public:
    explicit SectionOperation(Section section) : section_(section) {}
    [[nodiscard]] Section section() const { return section_; }

    /// Restricts a clean to these items; others stay, whatever their marks. To be called before queueing.
    void restrictTo(std::shared_ptr<const AgreedItems> agreed) { agreed_ = std::move(agreed); }

    /// Has a clean tell what becomes of each item. To be called before queueing.
    void reportTo(OutcomeHandler handler) { outcomes_ = std::move(handler); }

protected:
    void report(const ItemOutcome& outcome) const {
        if (outcomes_) {
            outcomes_(outcome);
        }
    }
    [[nodiscard]] bool isAgreed(const CleanableItem& item) const { return !agreed_ || agreed_->holds(item); }

private:
    const Section section_;
    std::shared_ptr<const AgreedItems> agreed_;  ///< null for all
    OutcomeHandler outcomes_;
};

/// Whether the operation works on the section; one that works on none does not.
[[nodiscard]] inline bool isOf(const Operation& operation, Section section) {
    const auto* ofSection = dynamic_cast<const SectionOperation*>(&operation);
    return ofSection != nullptr && ofSection->section() == section;
}

/// Cancels every operation of the section on the queue and waits for each to finish, at most
/// `OperationQueue::returnTimeout`; what still hangs then is given up. Any thread.
inline void cancelSectionAndWait(OperationQueue& queue, Section section) {
    queue.cancelAndWait([section](const Operation& operation) { return isOf(operation, section); });
}

}  // namespace brimvault::engine
