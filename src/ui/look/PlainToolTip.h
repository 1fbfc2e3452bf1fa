#pragma once

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QWidget>

namespace brimvault::ui {

/// Shows the text as a tooltip, or none if it is empty. A file's name may look like markup, and is shown as it is. Main
/// thread.
inline void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget) {
    QToolTip::showText(event.globalPos(), text.isEmpty() ? QString() : Qt::convertFromPlainText(text), widget);
}

/// Tells assistive clients of a new description; by default they are told even if it is the old one. Main thread.
inline void setDescription(QWidget& widget, const QString& text) {
    if (widget.accessibleDescription() != text) {
        widget.setAccessibleDescription(text);
    }
}

/// Gives a widget a tooltip of several lines, and assistive clients its plain text: by default they read out the
/// markup. Main thread.
inline void setWrappedToolTip(QWidget& widget, const QString& text) {
    widget.setToolTip(text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal));
    setDescription(widget, text);
}

}  // namespace brimvault::ui
