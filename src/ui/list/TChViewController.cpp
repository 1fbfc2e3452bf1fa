#include "ui/list/TChViewController.h"

namespace brimvault::ui {

QString TChViewController::getDisplayText(const QString& text) {
    const QLatin1String prefix("com.");
    return text.size() > prefix.size() && text.startsWith(prefix) ? text.mid(prefix.size()) : text;
}

}  // namespace brimvault::ui
