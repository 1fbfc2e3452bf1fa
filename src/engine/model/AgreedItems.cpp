#include "engine/model/AgreedItems.h"

#include <algorithm>
#include <functional>

namespace brimvault::engine {

bool AgreedItems::holds(const CleanableItem& item) const {
    std::call_once(sorted_, [this] { std::sort(agreed_.begin(), agreed_.end(), std::less<>()); });
    return std::binary_search(agreed_.begin(), agreed_.end(), &item, std::less<>());
}

}  // namespace brimvault::engine
