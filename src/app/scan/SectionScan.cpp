#include "app/scan/SectionScan.h"

#include <QEventLoop>
#include <QTimer>
#include <algorithm>

#include "app/scan/ScanOperations.h"
#include "engine/model/PlaceTexts.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "langres/KeptLanguages.h"
#include "platform/InterruptSignal.h"
#include "platform/StoredDefaults.h"

namespace brimvault::app {

using engine::Section;

namespace {

bool holds(const std::vector<SectionName>& sections, Section section) {
    return std::any_of(sections.begin(), sections.end(),
                       [section](const SectionName& name) { return name.section == section; });
}

QStringList keptLanguages(const std::filesystem::path& settings) {
    return langres::languagesToKeep(langres::LanguagesManager::sharedManager(), platform::StoredDefaults(settings));
}

}  // namespace

SectionScan::SectionScan() : scanner_(scanOperations()) {}

std::optional<std::vector<SectionFindings>> SectionScan::run(const ScanRequest& request) {
    if (holds(request.sections, Section::languageResources)) {
        reading_ = std::async(std::launch::async, &keptLanguages, platform::StoredDefaults::standardFile());
    }
    if (runSections(request.sections) == End::interrupted) {
        return std::nullopt;
    }
    const QStringList languages = reading_.valid() ? reading_.get() : QStringList();
    model_.updateResSizesForApps(languages);
    std::vector<SectionFindings> findings;
    for (const auto& name : request.sections) {
        findings.push_back(findingsOf(model_, name, request.minBytes, languages));
    }
    return findings;
}

SectionScan::End SectionScan::runSections(const std::vector<SectionName>& sections) {
    QEventLoop loop;
    End end = End::whole;
    const auto finished = engine::NotificationCenter::defaultCenter().addMainThreadObserver(
        engine::notification::scanFinished, &loop, [&](const auto&) { loop.quit(); });
    const auto interrupt = platform::onInterrupt([&] {
        end = End::interrupted;
        scanner_.cancelScanAll();
        QTimer::singleShot(engine::OperationQueue::returnTimeout, &loop, &QEventLoop::quit);
    });
    scanner_.Scan(holds(sections, Section::languageResources), holds(sections, Section::downloads),
                  holds(sections, Section::caches), holds(sections, Section::trash), holds(sections, Section::logs));
    loop.exec();
    return end;
}

QStringList SectionScan::refusals(const ScanRequest& request) const {
    QStringList lines;
    for (const auto& name : request.sections) {
        lines += engine::placeTexts::refused(model_.places(name.section)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    lines.removeDuplicates();  // two sections may look into the same folder
    return lines;
}

}  // namespace brimvault::app
