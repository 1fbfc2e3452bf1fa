#include "files/walk/StackCollection.h"

namespace brimvault::files {

void StackCollection::pushItem(std::unique_ptr<StackItem> item) {
    item->prevItem = std::move(topItem_);
    topItem_ = std::move(item);
    ++nDepth_;
}

std::unique_ptr<StackItem> StackCollection::popItem() {
    if (!topItem_) {
        return nullptr;
    }
    auto popped = std::move(topItem_);
    topItem_ = std::move(popped->prevItem);
    --nDepth_;
    return popped;
}

void StackCollection::clearStack() {
    while (popItem()) {
    }
}

}  // namespace brimvault::files
