#pragma once

#include <QString>
#include <cstring>
#include <memory>

namespace brimvault::engine {

/// Where a name stands among others, in the order of the user's language with digits by value: first by the name
/// without its extension, then by the whole. Making one takes long and comparing two does not; there may be very many,
/// so that they are kept small. Any thread.
class NameKey {
public:
    NameKey() = default;
    NameKey(const QString& keyName, const QString& wholeName);

    [[nodiscard]] bool isMade() const { return keys_ != nullptr; }
    /// Below, at or above 0. Both are made.
    [[nodiscard]] int compare(const NameKey& other) const {
        const int byKey = std::strcmp(keys_.get(), other.keys_.get());
        return byKey != 0 ? byKey : std::strcmp(wholeName(), other.wholeName());
    }

private:
    [[nodiscard]] const char* wholeName() const {
        const char* second = keys_.get() + std::strlen(keys_.get()) + 1;
        return *second == '\0' ? keys_.get() : second;
    }

    std::unique_ptr<char[]> keys_;  ///< both, each ended by a zero byte; the second empty when it is the first
};

}  // namespace brimvault::engine
