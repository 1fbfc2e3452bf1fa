#pragma once

#include <QStyledItemDelegate>

#include "ui/report/NotCleanedListView.h"

namespace brimvault::ui {

/// Draws the rows of the not-cleaned report: shaded titles and indented messages. Main thread.
class NotCleanedRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit NotCleanedRowDelegate(NotCleanedListView* view) : QStyledItemDelegate(view), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Shows the whole text of a row in which it is elided.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    void drawTitle(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void drawMessage(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    [[nodiscard]] bool wraps(const QModelIndex& index) const;

    const NotCleanedListView* view_;
};

}  // namespace brimvault::ui
