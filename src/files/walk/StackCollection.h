#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "files/walk/FolderReference.h"

namespace brimvault::files {

/// One element of a StackCollection.
struct StackItem {
    explicit StackItem(FolderReference ref) : fsref(std::move(ref)) {}

    FolderReference fsref;
    std::unique_ptr<StackItem> prevItem;  ///< the item below
};

/// The explicit stack of a walk: last in, first out, without a limit, so that the depth of a tree costs heap and never
/// the thread's stack. One thread.
class StackCollection {
public:
    StackCollection() = default;
    StackCollection(const StackCollection&) = delete;
    StackCollection& operator=(const StackCollection&) = delete;
    ~StackCollection() { clearStack(); }

    void pushItem(std::unique_ptr<StackItem> item);
    /// The top item, off the stack; null when the stack is empty.
    std::unique_ptr<StackItem> popItem();
    /// Item by item: a chain of owners destroyed at once would recurse as deep as the tree.
    void clearStack();

    [[nodiscard]] StackItem* topItem() const { return topItem_.get(); }
    [[nodiscard]] std::int64_t nDepth() const { return nDepth_; }

private:
    std::int64_t nDepth_ = 0;
    std::unique_ptr<StackItem> topItem_;
};

}  // namespace brimvault::files
