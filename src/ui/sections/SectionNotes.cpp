#include "ui/sections/SectionNotes.h"

#include <QLocale>
#include <algorithm>

#include "engine/model/FileSize.h"

namespace brimvault::ui {

using engine::FileSize;
using engine::Section;

void SectionNotes::found(Section section, qsizetype items) {
    notes_[section].found = std::max(notes_[section].found, items);
}

QString SectionNotes::text(Section section) const {
    const auto& note = notes_[section];
    if (note.scan == Scan::skipped) {
        return tr("Does not answer, skipped");
    }
    if (note.cleaned > 0) {
        const QString size = FileSize::formatMemoryStringDot1(note.cleaned);
        return (note.scan == Scan::stopped ? tr("Stopped, %1 cleaned") : tr("%1 cleaned")).arg(size);
    }
    return note.scan == Scan::stopped ? stoppedText(section, note.found) : QString();
}

QString SectionNotes::stoppedText(Section section, qsizetype found) {
    const QString number = QLocale().toString(found);
    if (found == 0) {
        return tr("Stopped, nothing found so far");
    }
    if (section == Section::languageResources) {
        return found == 1 ? tr("Stopped, 1 application so far") : tr("Stopped, %1 applications so far").arg(number);
    }
    return found == 1 ? tr("Stopped, 1 item so far") : tr("Stopped, %1 items so far").arg(number);
}

}  // namespace brimvault::ui
