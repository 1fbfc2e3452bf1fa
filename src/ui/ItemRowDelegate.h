#pragma once

#include "ui/ItemListModel.h"
#include "ui/RowDelegate.h"

namespace brimvault::ui {

/// Draws the cells of an item list: check box, icon, name, numbers. Main thread.
class ItemRowDelegate final : public RowDelegate {
    Q_OBJECT

public:
    explicit ItemRowDelegate(CheckTableView* view) : RowDelegate(view) {}

protected:
    void drawGround(QPainter& painter, const QRect& cell, int row) const override;
    void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] bool isNumber(int column) const override { return ItemListModel::isNumber(column); }
};

}  // namespace brimvault::ui
