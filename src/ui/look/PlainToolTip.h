#pragma once

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace brimvault::ui {

/// Shows the text as a tooltip, or none if it is empty. A file's name may look like markup, and is shown as it is. Main
/// thread.
inline void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget) {
    QToolTip::showText(event.globalPos(), text.isEmpty() ? QString() : Qt::convertFromPlainText(text), widget);
}

}  // namespace brimvault::ui
