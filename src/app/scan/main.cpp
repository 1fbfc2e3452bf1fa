// Brimvault's scan without its window: prints what the sections hold. It has no code that removes.

#include <QCoreApplication>
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

#include "app/scan/JsonText.h"
#include "app/scan/ScanRequest.h"
#include "app/scan/SectionScan.h"
#include "app/scan/TableText.h"
#include "platform/ReadOnlyLibraries.h"

namespace {

using namespace brimvault;

enum ExitCode { found = 0, nothingFound = 1, wrongUsage = 2, incomplete = 3, interrupted = 130 };

void complain(const QString& text) { std::cerr << "brimvault-scan: " << text.toStdString() << '\n'; }

/// Whether all of it was written.
bool print(const std::string& text) {
    std::cout << text << std::flush;
    if (!std::cout) {
        complain(QStringLiteral("The output could not be written."));
    }
    return static_cast<bool>(std::cout);
}

ExitCode scan(const app::ScanRequest& request) {
    app::SectionScan scan;
    const auto findings = scan.run(request);
    if (!findings) {
        std::_Exit(interrupted);
    }
    const bool isJson = request.format == app::ScanRequest::Format::json;
    const bool isPrinted = print(isJson ? app::jsonText(*findings) : app::tableText(*findings).toStdString());
    const QStringList refusals = scan.refusals(request);
    std::for_each(refusals.begin(), refusals.end(), &complain);
    if (!isPrinted || !refusals.isEmpty()) {
        return incomplete;
    }
    const bool isAnything = std::any_of(findings->begin(), findings->end(),
                                        [](const app::SectionFindings& section) { return !section.items.empty(); });
    return isAnything ? found : nothingFound;
}

}  // namespace

int main(int argc, char* argv[]) {
    platform::keepLibrariesFromWriting();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brimvault-scan"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMVAULT_VERSION));

    const auto request = app::readScanRequest(QCoreApplication::arguments());
    if (const auto* error = std::get_if<app::UsageError>(&request)) {
        complain(error->text + QStringLiteral(" See brimvault-scan --help."));
        return wrongUsage;
    }
    if (const auto* help = std::get_if<app::ScanHelp>(&request)) {
        return print(help->text.toStdString()) ? found : incomplete;
    }
    return scan(std::get<app::ScanRequest>(request));
}
