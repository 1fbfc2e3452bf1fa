#pragma once

#include <QPointer>
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
    /// Gives the button the focus again once it can be used, if it is still on show by then and `holder` has it.
    void refocusButton(QWidget* holder) { holder_ = holder; }

Q_SIGNALS:
    void undoRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QWidget> holder_;
    ElidedLabel* text_;
    WhiteTitleButton* undo_;
};

}  // namespace brimvault::ui
