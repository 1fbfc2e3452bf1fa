#pragma once

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

}  // namespace brimvault::files
