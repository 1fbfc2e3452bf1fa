#pragma once

#include <memory>

#include "engine/operations/FCutter.h"
#include "platform/System.h"
#include "scanners/SChOperation.h"
#include "scanners/SDwnOperation.h"
#include "scanners/SLogsOperation.h"
#include "scanners/STrshOperation.h"
#include "support/ScanRun.h"

namespace brimvault::tests {

/// The program's scan of a section of files, in the home folder of the time at which it is made.
class FileScan {
public:
    explicit FileScan(engine::Section section) : operation_(make(section)) {}

    ScanResult run(const std::function<void(engine::SBaseOperation&)>& meanwhile = [](engine::SBaseOperation&) {}) {
        return runScan(operation_, [&] { meanwhile(*operation_); });
    }
    [[nodiscard]] qint64 expectedCount() const { return operation_->nTopLevelItemsCount(); }

private:
    std::shared_ptr<engine::SBaseOperation> make(engine::Section section) {
        switch (section) {
            case engine::Section::caches:
                return std::make_shared<scanners::SChOperation>(containers_);
            case engine::Section::downloads:
                return std::make_shared<scanners::SDwnOperation>();
            case engine::Section::logs:
                return std::make_shared<scanners::SLogsOperation>(containers_, paths_);
            default:
                return std::make_shared<scanners::STrshOperation>(scanners::STrshOperation::Sources{.finder = finder_});
        }
    }

    scanners::ContainersFolderScannerManager containers_{platform::homeFolder() / "Library/Containers"};
    const scanners::PathsGenerator paths_;
    platform::FinderPreferences finder_;
    const std::shared_ptr<engine::SBaseOperation> operation_;
};

/// Cleans the ticked items of a section of files; what stays, with the reasons.
inline engine::NotRemovedDictionary cleanItems(engine::Section section, const engine::ItemArray& items) {
    const auto words = engine::vocabulary(section);
    const HeardNotifications heard = {words.cleanFinished};
    const auto operation = engine::CleanTable::fileSections().files[section](items);
    engine::OperationQueue queue;
    queue.addOperation(operation);
    operation->waitUntilFinished();
    return engine::getDictionaryPropfromNotification<engine::NotRemovedDictionary>(heard.last(words.cleanFinished),
                                                                                   words.notCleanedKey)
        .value_or(engine::NotRemovedDictionary());
}

}  // namespace brimvault::tests
