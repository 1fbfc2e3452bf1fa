#include "ui/window/StatusTexts.h"

#include "engine/model/CleanableItem.h"
#include "engine/model/FileSize.h"
#include "ui/services/DefaultsKeys.h"

namespace brimvault::ui {

using engine::FileSize;

// A clean ends soon when the window is closed. A single removal goes on to its end.
void StatusTexts::showSizes(quint64 selected, quint64 total, Activity activity, bool closes) {
    const Activity work = workOf(activity);
    QString text = tr("Selected of %1").arg(FileSize::formatMemoryStringDot1(total));
    if (work == Activity::cleaning) {
        text = tr("Cleaning...");
    } else if (work == Activity::removing) {
        text = closes ? tr("Removing, then closing...") : tr("Removing...");
    }
    plashka_.setTexts(selected == 0 ? tr("Zero Bytes") : FileSize::formatMemoryStringDot1(selected), text);
}

void StatusTexts::showFrees(quint64 selected, quint64 frees) {
    const QString text = engine::CleanableItem::isWorthTelling(selected, frees)
                             ? tr("Cleaning frees %1. Snapshots of the file system may still hold that space.")
                                   .arg(FileSize::formatMemoryStringDot1(frees))
                             : QString();
    if (plashka_.toolTip() != text) {
        plashka_.setToolTip(text);
        plashka_.setAccessibleDescription(text);
    }
}

void StatusTexts::showHint() { ptxtStartDescClean_.setText(tr("Select sections and press Scan button")); }

void StatusTexts::showCleanedSummary() {
    showFrees(0, 0);
    const quint64 total = defaults_.number(defaults_key::totalCleanedSize).value_or(0);
    const quint64 last = defaults_.number(defaults_key::lastCleanedSize).value_or(0);
    const QString totalText = FileSize::formatMemoryStringDot1(total);
    if (total == 0) {
        ptxtStartDescClean_.setText(tr("Select files and press Clean button"));
        plashka_.setTexts({}, tr("Select files to clean"));
    } else if (last == 0) {
        ptxtStartDescClean_.setText(tr("%1 cleaned before").arg(totalText));
        plashka_.setTexts({}, tr("%1 cleaned before").arg(totalText));
    } else {
        plashka_.setTexts(tr("%1 cleaned").arg(FileSize::formatMemoryStringDot1(last)),
                          tr("%1 cleaned in total").arg(totalText));
    }
}

}  // namespace brimvault::ui
