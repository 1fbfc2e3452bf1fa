#pragma once

#include <QLabel>

#include "ui/controls/Sheet.h"
#include "ui/report/NotCleanedListView.h"

namespace brimvault::ui {

/// The sheet of the not-cleaned report: what stayed, and why. Main thread.
class NotCleanedSheet final : public Sheet {
    Q_OBJECT

public:
    /// The model outlives the sheet.
    NotCleanedSheet(QAbstractItemModel* rows, QWidget* window);

    [[nodiscard]] NotCleanedListView* pNotCleanedTView() const { return pNotCleanedTView_; }
    /// The text below the heading.
    [[nodiscard]] QString note() const { return note_->text(); }
    /// An empty one takes no room.
    void setNote(const QString& note);

private:
    QLabel* note_;
    NotCleanedListView* pNotCleanedTView_;
};

}  // namespace brimvault::ui
