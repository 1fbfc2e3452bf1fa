#include "engine/model/NameKey.h"

#include "platform/NameOrder.h"

namespace brimvault::engine {

NameKey::NameKey(const QString& keyName, const QString& wholeName) {
    const auto first = platform::nameSortKey(keyName);
    const auto second = keyName == wholeName ? std::string() : platform::nameSortKey(wholeName);
    keys_ = std::make_unique<char[]>(first.size() + second.size() + 2);
    std::memcpy(keys_.get(), first.c_str(), first.size() + 1);
    std::memcpy(keys_.get() + first.size() + 1, second.c_str(), second.size() + 1);
}

}  // namespace brimvault::engine
