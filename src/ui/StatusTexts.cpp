#include "ui/StatusTexts.h"

#include <QCoreApplication>

#include "engine/FileSize.h"
#include "ui/DefaultsKeys.h"

namespace brimvault::ui {

using engine::FileSize;

namespace {

QString text(const char* source) { return QCoreApplication::translate("Status", source); }

}  // namespace

void StatusTexts::showSizes(quint64 selected, quint64 total, Activity activity) {
    const QString selectedText = selected == 0 ? text("Zero Bytes") : FileSize::formatMemoryStringDot1(selected);
    const QString totalText = text("Selected of %1").arg(FileSize::formatMemoryStringDot1(total));
    plashka_.setTexts(selectedText, activity == Activity::cleaning   ? text("Cleaning...")
                                    : activity == Activity::removing ? text("Removing...")
                                                                     : totalText);
}

void StatusTexts::showHint() { ptxtStartDescClean_.setText(text("Select sections and press Scan button")); }

void StatusTexts::showCleanedSummary() {
    const quint64 total = defaults_.number(defaults_key::totalCleanedSize).value_or(0);
    const quint64 last = defaults_.number(defaults_key::lastCleanedSize).value_or(0);
    const QString totalText = FileSize::formatMemoryStringDot1(total);
    if (total == 0) {
        ptxtStartDescClean_.setText(text("Select files and press Clean button"));
        plashka_.setTexts({}, text("Select files to clean"));
    } else if (last == 0) {
        ptxtStartDescClean_.setText(text("%1 cleaned before").arg(totalText));
        plashka_.setTexts({}, text("%1 cleaned before").arg(totalText));
    } else {
        plashka_.setTexts(text("%1 cleaned").arg(FileSize::formatMemoryStringDot1(last)),
                          text("%1 cleaned in total").arg(totalText));
    }
}

}  // namespace brimvault::ui
