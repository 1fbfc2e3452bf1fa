#pragma once

#include <QWidget>

#include "ui/controls/WhiteTitleButton.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

/// Beside the title of a list: how much was moved to the Trash, and a button that puts the latest of it back. Hidden
/// until something was moved. Main thread.
class MovedLine final : public QWidget {
    Q_OBJECT

public:
    explicit MovedLine(QWidget* parent = nullptr);

    /// The name is that of what the button puts back; without one there is no button.
    void setMoved(quint64 bytes, const QString& lastName);
    [[nodiscard]] WhiteTitleButton* undoButton() const { return undo_; }

Q_SIGNALS:
    void undoRequested();

private:
    ElidedLabel* text_;
    WhiteTitleButton* undo_;
};

}  // namespace brimvault::ui
