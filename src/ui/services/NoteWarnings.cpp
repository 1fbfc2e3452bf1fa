#include "ui/services/NoteWarnings.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QLocale>
#include <algorithm>
#include <utility>

#include "engine/model/FFItem.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

QString restText(qsizetype items) {
    return items == 1 ? QCoreApplication::translate("NoteWarnings", "and 1 more")
                      : QCoreApplication::translate("NoteWarnings", "and %1 more").arg(QLocale().toString(items));
}

// The note says what may be lost, so that it must not be pushed out of sight by a long name.
QString line(const engine::FFItem& item) {
    constexpr qreal textSize = 13;
    constexpr int maxNameWidth = 180;
    const QString name = QFontMetrics(look::font(textSize))
                             .elidedText(item.ppdisplayName(), Qt::ElideMiddle, look::scaled(maxNameWidth));
    return QCoreApplication::translate("NoteWarnings", "%1 – %2", "name and warning").arg(name, item.noteText());
}

}  // namespace

QStringList noteLines(engine::ItemArray noted) {
    constexpr qsizetype maxNamed = 3;
    const auto weight = [](const auto& item) { return std::pair(seriousness(item->note()), item->pfSize()); };
    std::stable_sort(noted.begin(), noted.end(),
                     [&](const auto& left, const auto& right) { return weight(left) > weight(right); });
    QStringList lines;
    for (const auto& item : noted.first(std::min(maxNamed, noted.size()))) {
        lines.append(line(*item));
    }
    if (noted.size() > maxNamed) {
        lines.append(restText(noted.size() - maxNamed));
    }
    return lines;
}

}  // namespace brimvault::ui
