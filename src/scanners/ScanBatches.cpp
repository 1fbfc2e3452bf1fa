#include "scanners/ScanBatches.h"

#include <algorithm>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::scanners {

using engine::NotificationCenter;

namespace {

constexpr double batchesPerScan = 75.0;

}  // namespace

ScanBatches::ScanBatches(engine::Section section, qint64 expectedCount, Percent beyondExpected)
    : section_(section), expectedCount_(expectedCount), beyondExpected_(beyondExpected) {}

void ScanBatches::beginPass() {
    processed_ = 0;
    sinceBatch_ = 0;
    batch_.clear();
}

void ScanBatches::step() {
    ++processed_;
    ++sinceBatch_;
    const double threshold = static_cast<double>(expectedCount_) / batchesPerScan;
    if (static_cast<double>(sinceBatch_) < threshold || batch_.isEmpty()) {
        return;
    }
    tryUpdateProgress(percent());
    batch_.clear();
    sinceBatch_ = 0;
}

void ScanBatches::add(const std::shared_ptr<engine::FFItem>& item) {
    items_.append(item);
    batch_.append(item);
}

qint64 ScanBatches::percent() const {
    if (expectedCount_ <= 0) {
        return 0;
    }
    const auto percent =
        static_cast<qint64>(static_cast<double>(processed_) * 100.0 / static_cast<double>(expectedCount_));
    return beyondExpected_ == Percent::cappedAtHundred ? std::min<qint64>(percent, 100) : percent;
}

// The first batch, which has all items found so far, replaces the results of an earlier scan in the model.
void ScanBatches::tryUpdateProgress(qint64 percent) const {
    const auto words = engine::vocabulary(section_);
    const bool everything = batch_.size() == items_.size();
    NotificationCenter::defaultCenter().post(words.scanProgress,
                                             {{everything ? words.arrayKey : words.deltaKey, batch_},
                                              {engine::key::totalCount, expectedCount_},
                                              {engine::key::progressPercent, percent}});
}

void ScanBatches::sendOperationCompleted() const {
    const auto words = engine::vocabulary(section_);
    NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, items_}});
}

}  // namespace brimvault::scanners
