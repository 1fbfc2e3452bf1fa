#pragma once

#include <gtest/gtest.h>

#include "engine/notification/Notifications.h"
#include "engine/operations/OperationQueue.h"
#include "engine/removal/FCutter.h"
#include "platform/System.h"
#include "scanners/SChOperation.h"
#include "scanners/SDwnOperation.h"
#include "scanners/SLogsOperation.h"
#include "scanners/STrshOperation.h"
#include "support/HeardNotifications.h"

namespace brimvault::tests {

/// Runs the operation on a thread of its own, to its end.
inline void runToEnd(const std::shared_ptr<engine::Operation>& operation) {
    engine::OperationQueue queue;
    queue.addOperation(operation);
    operation->waitUntilFinished();
}

/// What a scan of files has posted.
struct ScanResult {
    engine::ItemArray items;       ///< with its finished notification
    std::vector<qint64> percents;  ///< with each progress
    qint64 expectedCount = -1;     ///< in the end
};

using DuringScan = std::function<void(engine::SBaseOperation&)>;

/// Runs a scan of files; `meanwhile` is called on its thread at every progress. Fails unless it finishes exactly once.
inline ScanResult runScan(
    const std::shared_ptr<engine::SBaseOperation>& operation, const DuringScan& meanwhile = [](auto&) {}) {
    const auto words = engine::vocabulary(operation->section());
    const HeardNotifications finished = {words.scanFinished};
    ScanResult result;
    const auto observation =
        engine::NotificationCenter::defaultCenter().addObserver(words.scanProgress, [&](const auto& post) {
            result.percents.push_back(
                engine::getNumberPropfromNotification(post, engine::key::progressPercent).value_or(-1));
            meanwhile(*operation);
        });
    runToEnd(operation);
    EXPECT_EQ(finished.names().size(), 1);
    result.items =
        engine::getArrayPropfromNotification<engine::ItemArray>(finished.last(words.scanFinished), words.arrayKey)
            .value_or(engine::ItemArray());
    result.expectedCount = operation->nTopLevelItemsCount();
    return result;
}

/// Runs the program's scan of a section of files in the home folder.
inline ScanResult scanSection(
    engine::Section section, const DuringScan& meanwhile = [](auto&) {}) {
    scanners::ContainersFolderScannerManager containers(platform::homeFolder() / "Library/Containers");
    const scanners::PathsGenerator paths;
    platform::FinderPreferences finder;
    switch (section) {
        case engine::Section::caches:
            return runScan(std::make_shared<scanners::SChOperation>(containers), meanwhile);
        case engine::Section::downloads:
            return runScan(std::make_shared<scanners::SDwnOperation>(), meanwhile);
        case engine::Section::logs:
            return runScan(std::make_shared<scanners::SLogsOperation>(containers, paths), meanwhile);
        default:
            return runScan(
                std::make_shared<scanners::STrshOperation>(scanners::STrshOperation::Sources{.finder = finder}),
                meanwhile);
    }
}

/// Cleans the ticked items of a section of files; what stays, with the reasons.
inline engine::NotRemovedDictionary cleanItems(engine::Section section, const engine::ItemArray& items) {
    const auto words = engine::vocabulary(section);
    const HeardNotifications heard = {words.cleanFinished};
    runToEnd(engine::CleanTable::fileSections().files[section](items));
    return engine::getDictionaryPropfromNotification<engine::NotRemovedDictionary>(heard.last(words.cleanFinished),
                                                                                   words.notCleanedKey)
        .value_or(engine::NotRemovedDictionary());
}

}  // namespace brimvault::tests
