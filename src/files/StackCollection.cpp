#include "files/StackCollection.h"

namespace brimvault::files {

std::string FolderReference::takePendingFolder() {
    if (pendingFolders.empty()) {
        return {};
    }
    pendingFolders.pop_back();  // the zero byte that ends the last name
    const auto before = pendingFolders.rfind('\0');
    const auto start = before == std::string::npos ? 0 : before + 1;
    std::string taken = pendingFolders.substr(start);
    pendingFolders.resize(start);
    return taken;
}

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
