#include "app/scan/TableText.h"

#include "engine/model/FileSize.h"
#include "platform/text/DisplayText.h"

namespace brimvault::app {

namespace {

constexpr int sizeWidth = 8;  // "999.9 MB"

QString lineOf(const Finding& item) {
    const QString size = engine::FileSize::formatMemoryStringDot1(item.bytes);
    const QString note = platform::displayText(engine::textOf(item.note, item.noteArgument).toStdString());
    return (item.isTicked ? QLatin1String("  [x] ") : QLatin1String("  [ ] ")) + size.rightJustified(sizeWidth) +
           QLatin1String("  ") + platform::displayText(item.path) +
           (note.isEmpty() ? QString() : QStringLiteral("  (%1)").arg(note)) + QLatin1Char('\n');
}

QString headingOf(const SectionFindings& found) {
    const QString total =
        found.items.empty() ? QStringLiteral("nothing found") : engine::FileSize::formatMemoryStringDot1(found.bytes());
    return found.name.title + QLatin1String(": ") + total + QLatin1Char('\n');
}

}  // namespace

QString tableText(const std::vector<SectionFindings>& findings) {
    QString table;
    for (const auto& found : findings) {
        table += (table.isEmpty() ? QString() : QStringLiteral("\n")) + headingOf(found);
        for (const auto& item : found.items) {
            table += lineOf(item);
        }
    }
    return table;
}

}  // namespace brimvault::app
