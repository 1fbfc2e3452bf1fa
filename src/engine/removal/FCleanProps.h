#pragma once

#include <QStringList>
#include <mutex>

namespace brimvault::engine {

/// The options of a clean. `CPerformer` sets them on the main thread, clean operations read them on theirs.
class FCleanProps {
public:
    /// Identifiers of the languages that must be kept; empty until they are set.
    [[nodiscard]] QStringList mpstrArrayNeededLangs() const {
        const std::lock_guard guard(mutex_);
        return mpstrArrayNeededLangs_;
    }
    void setMpstrArrayNeededLangs(const QStringList& languages) {
        const std::lock_guard guard(mutex_);
        mpstrArrayNeededLangs_ = languages;
    }

private:
    mutable std::mutex mutex_;
    QStringList mpstrArrayNeededLangs_;
};

}  // namespace brimvault::engine
