#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <variant>
#include <vector>

#include "app/scan/SectionNames.h"

namespace brimvault::app {

/// What the command line asks for.
struct ScanRequest {
    enum class Format { table, json };

    Format format = Format::table;
    std::vector<SectionName> sections;  ///< to be scanned; each once, in the window's order
    quint64 minBytes = 1;               ///< smaller items are not printed
};

/// A text that is asked for instead of a scan.
struct ScanHelp {
    QString text;
};

/// What is wrong with the command line.
struct UsageError {
    QString text;
};

/// Arguments begin with the program's name. Main thread, once there is an application.
[[nodiscard]] std::variant<ScanRequest, ScanHelp, UsageError> readScanRequest(const QStringList& arguments);

}  // namespace brimvault::app
