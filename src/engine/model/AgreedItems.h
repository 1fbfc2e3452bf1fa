#pragma once

#include <QList>
#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/model/CleanableItem.h"

namespace brimvault::engine {

/// The items of a list that are ticked when this is made: what the user, being asked, agrees to have removed. They are
/// known by what they are, so that none that comes later is among them. Quickly made for very many. Any thread.
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
    std::shared_ptr<const void> held_;  ///< the items, so that no other takes the place of one in memory
    mutable std::once_flag sorted_;     ///< when they are first asked for, since that takes longer
    mutable std::vector<const CleanableItem*> agreed_;
};

}  // namespace brimvault::engine
