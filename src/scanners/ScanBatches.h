#pragma once

#include <QtGlobal>
#include <memory>

#include "engine/Section.h"
#include "engine/model/FFItem.h"

namespace brimvault::scanners {

/// The results of one scan of a section of files, and the batches in which they are reported while it runs: about
/// seventy-five of them, whatever the number of items. One thread, the operation's.
///
/// For each item `step` comes first and then, with what was measured, `add`: so a batch never holds the item that
/// closed it, and what came after the last batch reaches the model only with the finished notification.
class ScanBatches {
public:
    /// What the per cent says when more is found than was expected.
    enum class Percent { goesOn, cappedAtHundred };

    ScanBatches(engine::Section section, qint64 expectedCount, Percent beyondExpected = Percent::goesOn);

    /// For scans that list in several passes: counts and batches from the start again, and keeps what was found. What
    /// the last batch of a pass held reaches the model with the finished notification.
    void beginPass();
    /// Counts one item, and posts the batch when it is due.
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
