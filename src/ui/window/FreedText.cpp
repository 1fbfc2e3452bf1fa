#include "ui/window/FreedText.h"

#include <QCoreApplication>

#include "engine/model/FileSize.h"

namespace brimvault::ui {

using engine::FileSize;

QString freedText(const engine::FreedSpace& space) {
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

}  // namespace brimvault::ui
