#pragma once

#include <QtGlobal>
#include <memory>

#include "engine/Section.h"
#include "engine/model/FFItem.h"

namespace brimvault::scanners {

/// The results of one scan of a section of files. While the scan runs it posts them in about 75 batches, whatever the
/// number of items, to throttle the progress. One thread, the operation's.
///
/// For each item the scan calls `step` before it measures, then `add`. So a batch does not contain the item whose
/// `step` posted it, and items after the last batch reach the model only with the finished notification.
class ScanBatches {
public:
    /// The progress if more is found than was expected.
    enum class Percent { goesOn, cappedAtHundred };

    ScanBatches(engine::Section section, qint64 expectedCount, Percent beyondExpected = Percent::goesOn);

    /// For scans with several passes: restarts the count and the batch, and keeps what was found. Items of an unposted
    /// batch reach the model with the finished notification.
    void beginPass();
    /// Counts one item, and posts the batch if it is due.
    void step();
    void add(const std::shared_ptr<engine::FFItem>& item);
    /// Posts the finished notification with everything that was added.
    void sendOperationCompleted() const;

private:
    void tryUpdateProgress(qint64 percent) const;
    [[nodiscard]] qint64 percent() const;

    const engine::Section section_;
    const qint64 expectedCount_;
    const Percent beyondExpected_;
    qint64 processed_ = 0;
    qint64 sinceBatch_ = 0;
    engine::ItemArray items_;
    engine::ItemArray batch_;
};

}  // namespace brimvault::scanners
