#include "engine/model/TrashTexts.h"

#include <QCoreApplication>
#include <QLocale>

#include "platform/text/DisplayText.h"

namespace brimvault::engine::trashTexts {

namespace {

// The beginning and the end of a path of the greatest length say enough, and leave the window its size.
constexpr qsizetype maxShown = 300;

QString shortened(const QString& text) {
    return text.size() <= maxShown ? text : text.first(maxShown / 2) + QChar(0x2026) + text.last(maxShown / 2 - 1);
}

}  // namespace

QString origin(const platform::TrashRecord& record) {
    return record.origin.empty() ? QCoreApplication::translate("Trash", "Unknown")
                                 : shortened(platform::displayText(record.origin));
}

QString deleted(const platform::TrashRecord& record) {
    return record.deleted.isValid() ? QLocale().toString(record.deleted, QLocale::LongFormat) : QString();
}

QStringList lines(const platform::TrashRecord& record) {
    QStringList lines{record.origin.empty() ? QCoreApplication::translate("Trash", "Origin unknown")
                                            : QCoreApplication::translate("Trash", "From %1").arg(origin(record))};
    if (const QString date = deleted(record); !date.isEmpty()) {
        lines.append(QCoreApplication::translate("Trash", "Deleted on %1").arg(date));
    }
    return lines;
}

}  // namespace brimvault::engine::trashTexts
