#pragma once

#include <QStyledItemDelegate>

namespace brimvault::ui {

class TTableView;

/// Draws the cells of an item list: check box, icon, name, size. Main thread.
class ItemRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ItemRowDelegate(TTableView* view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    static void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index);
    static void drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index);
    void drawFocus(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;

    const TTableView* view_;
};

}  // namespace brimvault::ui
