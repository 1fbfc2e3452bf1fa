#pragma once

#include <QString>
#include <cstring>
#include <memory>

namespace brimvault::platform {

/// A collation key: where a name stands in the order of the user's language, digits by value, upper and lower case
/// alike; first by the name without its extension, then by the whole name. Slow to make and quick to compare. Lists
/// have hundreds of thousands, so it is kept small. Any thread; keys differ between runs in different languages.
class NameKey {
public:
    NameKey() = default;
    NameKey(const QString& keyName, const QString& wholeName);

    [[nodiscard]] bool isMade() const { return keys_ != nullptr; }
    /// Below, at or above 0. Both must be made.
    [[nodiscard]] int compare(const NameKey& other) const {
        const int byKey = std::strcmp(keys_.get(), other.keys_.get());
        return byKey != 0 ? byKey : std::strcmp(wholeName(), other.wholeName());
    }

private:
    [[nodiscard]] const char* wholeName() const {
        const char* second = keys_.get() + std::strlen(keys_.get()) + 1;
        return *second == '\0' ? keys_.get() : second;
    }

    std::unique_ptr<char[]> keys_;  ///< both keys, each NUL-terminated; the second is empty when equal to the first
};

}  // namespace brimvault::platform
