#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/notification/Notifications.h"
#include "engine/operations/OperationQueue.h"
#include "engine/operations/SBaseOperation.h"
#include "support/HeardNotifications.h"

namespace brimvault::tests {

/// What a scan has posted.
struct ScanResult {
    engine::ItemArray items;       ///< with its finished notification
    std::vector<qint64> percents;  ///< with each progress
};

/// Runs a scan of files on a thread of its own, to its end; `meanwhile` is called there at every progress. Fails unless
/// it finishes exactly once.
inline ScanResult runScan(
    const std::shared_ptr<engine::SBaseOperation>& operation, const std::function<void()>& meanwhile = [] {}) {
    const auto words = engine::vocabulary(operation->section());
    const HeardNotifications finished = {words.scanFinished};
    const HeardNotifications progress = {words.scanProgress};
    const auto observation =
        engine::NotificationCenter::defaultCenter().addObserver(words.scanProgress, [&](const auto&) { meanwhile(); });
    engine::OperationQueue queue;
    queue.addOperation(operation);
    operation->waitUntilFinished();
    EXPECT_EQ(finished.names().size(), 1);
    ScanResult result;
    result.items =
        engine::getArrayPropfromNotification<engine::ItemArray>(finished.last(words.scanFinished), words.arrayKey)
            .value_or(engine::ItemArray());
    for (const auto& post : progress.all()) {
        result.percents.push_back(
            engine::getNumberPropfromNotification(post, engine::key::progressPercent).value_or(-1));
    }
    return result;
}

}  // namespace brimvault::tests
