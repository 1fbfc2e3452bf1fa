#pragma once

#include <QList>
#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/model/CleanableItem.h"

namespace brimvault::engine {

/// A snapshot of the ticked items of a list, made when the user is asked to agree to their removal. Items are compared
/// by address, so that none that comes later is among them. Any thread.
class AgreedItems {
public:
    template <typename Item>
    explicit AgreedItems(const QList<std::shared_ptr<Item>>& items)
        : held_(std::make_shared<const QList<std::shared_ptr<Item>>>(items)) {
        for (const auto& item : items) {
            if (item->ppbChecked()) {
                agreed_.push_back(item.get());
            }
        }
    }

    [[nodiscard]] bool holds(const CleanableItem& item) const {
        std::call_once(sorted_, [this] { std::sort(agreed_.begin(), agreed_.end(), std::less<>()); });
        return std::binary_search(agreed_.begin(), agreed_.end(), &item, std::less<>());
    }

private:
    std::shared_ptr<const void> held_;  ///< keeps the items alive, so that no address is reused
    mutable std::once_flag sorted_;     ///< sorted at the first lookup, since the snapshot is made on the main thread
    mutable std::vector<const CleanableItem*> agreed_;
};

}  // namespace brimvault::engine
