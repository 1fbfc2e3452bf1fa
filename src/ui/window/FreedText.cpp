#include "ui/window/FreedText.h"

#include <QCoreApplication>
#include <QLocale>

#include "engine/model/FileSize.h"

namespace brimvault::ui {

using engine::FileSize;

namespace {

QString spaceText(const engine::FreedSpace& space) {
    const QString freed = FileSize::formatMemoryStringDot1(space.freed);
    if (!space.isDifferenceWorthTelling()) {
        return space.freed == 0 ? QString() : QCoreApplication::translate("FreedText", "Freed %1").arg(freed);
    }
    const QString selected = FileSize::formatMemoryStringDot1(space.selected);
    const QString held = FileSize::formatMemoryStringDot1(space.held());
    if (space.programs.isEmpty()) {
        return QCoreApplication::translate("FreedText", "Freed %1 (%2 selected; %3 is still in use or shared)")
            .arg(freed, selected, held);
    }
    constexpr qsizetype maxPrograms = 2;
    return QCoreApplication::translate("FreedText", "Freed %1 (%2 selected; %3 is still in use by %4 or shared)")
        .arg(freed, selected, held, space.programs.mid(0, maxPrograms).join(QStringLiteral(", ")));
}

QString emptiedText(qsizetype logs) {
    return logs == 1 ? QCoreApplication::translate("FreedText", "1 log emptied")
                     : QCoreApplication::translate("FreedText", "%1 logs emptied").arg(QLocale().toString(logs));
}

}  // namespace

QString freedText(const engine::FreedSpace& space) {
    QString freed = spaceText(space);
    if (space.emptied == 0) {
        return freed;
    }
    const QString emptied = emptiedText(space.emptied);
    return freed.isEmpty() ? emptied
                           : QCoreApplication::translate("FreedText", "%1; %2", "what was freed, and what was emptied")
                                 .arg(freed, emptied);
}

}  // namespace brimvault::ui
