#pragma once

#include <QCollatorSortKey>
#include <QString>

namespace brimvault::engine {

/// Where a name stands among others, in the order of the user's language with digits by value: first by the name
/// without its extension, then by the whole. Making one takes long and comparing two does not. Any thread.
class NameKey {
public:
    NameKey(const QString& keyName, const QString& wholeName);

    /// Below, at or above 0.
    [[nodiscard]] int compare(const NameKey& other) const {
        const int byKey = keyName_.compare(other.keyName_);
        return byKey != 0 ? byKey : wholeName_.compare(other.wholeName_);
    }

private:
    QCollatorSortKey keyName_;
    QCollatorSortKey wholeName_;
};

}  // namespace brimvault::engine
