#pragma once

#include <future>
#include <optional>
#include <vector>

#include "app/scan/Findings.h"
#include "app/scan/ScanRequest.h"
#include "engine/model/DataMan.h"
#include "engine/operations/FScaner.h"

namespace brimvault::app {

/// A scan of some sections from start to end, as the window does it. Main thread.
class SectionScan {
public:
    SectionScan();

    /// Runs the event loop until all sections have been scanned. None if the user interrupts it: the scan is stopped
    /// then, but may hang, so that the process is to be ended without destroying anything.
    [[nodiscard]] std::optional<std::vector<SectionFindings>> run(const ScanRequest& request);
    /// For each root folder that was refused or could not be read, a line that says why; after the run.
    [[nodiscard]] QStringList refusals(const ScanRequest& request) const;

private:
    enum class End { whole, interrupted };
    [[nodiscard]] End runSections(const std::vector<SectionName>& sections);

    engine::DataMan model_;  // destroyed last: an operation that has not returned may still post to it
    engine::FScaner scanner_;
    std::future<QStringList> reading_;  ///< the languages to keep, read while the scan runs
};

}  // namespace brimvault::app
