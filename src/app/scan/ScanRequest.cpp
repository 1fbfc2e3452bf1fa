#include "app/scan/ScanRequest.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace brimvault::app {

namespace {

// A number of bytes, with a decimal unit or without.
std::optional<quint64> bytesFrom(const QString& text) {
    static const QRegularExpression form(QStringLiteral("\\A([0-9]+(?:\\.[0-9]+)?)(|[kK]B|MB|GB)\\z"));
    const auto match = form.match(text);
    const QString unit = match.captured(2);
    const double factor = unit.isEmpty()                ? 1
                          : unit == QLatin1String("MB") ? 1e6
                          : unit == QLatin1String("GB") ? 1e9
                                                        : 1e3;
    constexpr double max = 1e18;  // an exabyte: any larger one fits no disk, and no integer soon
    const double bytes = match.captured(1).toDouble() * factor;
    return match.hasMatch() && bytes <= max ? std::optional(static_cast<quint64>(std::ceil(bytes))) : std::nullopt;
}

QString allIds() {
    QStringList ids;
    for (const auto& name : sectionNames) {
        ids.append(name.id());
    }
    return ids.join(QLatin1String(", "));
}

// Those with one of the ids, or all; none if an id is unknown.
std::vector<SectionName> sectionsOf(const QStringList& ids) {
    std::vector<SectionName> sections;
    const bool isEachKnown = std::all_of(ids.begin(), ids.end(), [](const QString& id) {
        return std::any_of(sectionNames.begin(), sectionNames.end(), [&](const auto& name) { return id == name.id(); });
    });
    if (isEachKnown) {
        std::copy_if(sectionNames.begin(), sectionNames.end(), std::back_inserter(sections),
                     [&](const auto& name) { return ids.isEmpty() || ids.contains(name.id()); });
    }
    return sections;
}

}  // namespace

std::variant<ScanRequest, ScanHelp, UsageError> readScanRequest(const QStringList& arguments) {
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON instead of a table."));
    const QCommandLineOption section(QStringLiteral("section"),
                                     QStringLiteral("Scan this section; may be repeated. One of: %1.").arg(allIds()),
                                     QStringLiteral("NAME"));
    const QCommandLineOption minSize(
        QStringLiteral("min-size"),
        QStringLiteral("Leave out what is smaller: bytes, or a number with kB, MB or GB (10MB)."),
        QStringLiteral("SIZE"));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints what Brimvault would list, and removes nothing.\n\n"
                       "Exits with 0 if something was found, 1 if nothing was, 2 for a wrong command line, 3 if a "
                       "section could not be read, 130 if interrupted."));
    parser.addOptions({json, section, minSize, help, version});
    if (!parser.parse(arguments)) {
        return UsageError{parser.errorText()};
    }
    if (parser.isSet(help)) {
        return ScanHelp{parser.helpText()};
    }
    if (parser.isSet(version)) {
        return ScanHelp{
            QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion())};
    }
    if (!parser.positionalArguments().isEmpty()) {
        return UsageError{QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first())};
    }
    ScanRequest request;
    request.format = parser.isSet(json) ? ScanRequest::Format::json : ScanRequest::Format::table;
    request.sections = sectionsOf(parser.values(section));
    if (request.sections.empty()) {
        return UsageError{QStringLiteral("Unknown section; there are: %1.").arg(allIds())};
    }
    if (parser.isSet(minSize)) {
        const auto bytes = bytesFrom(parser.value(minSize));
        if (!bytes) {
            return UsageError{QStringLiteral("'%1' is no size.").arg(parser.value(minSize))};
        }
        request.minBytes = std::max<quint64>(*bytes, 1);
    }
    return request;
}

}  // namespace brimvault::app
