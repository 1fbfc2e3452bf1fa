#pragma once

#include <memory>

#include "ui/list/ItemListModel.h"
#include "ui/list/RowIcons.h"
#include "ui/table/RowDelegate.h"

namespace brimvault::ui {

/// Draws the cells of an item list: check box, icon, name, numbers. Behind the name stands the item's note, and at the
/// end of its cell, beside the size, what removing the item frees, each as far as there is room. Main thread.
class ItemRowDelegate final : public RowDelegate {
    Q_OBJECT

public:
    explicit ItemRowDelegate(CheckTableView* view, RowIcons::Load icons = RowIcons::installed())
        : RowDelegate(view), icons_(std::make_unique<RowIcons>(view, std::move(icons))) {}

protected:
    void drawGround(QPainter& painter, const QRect& cell, int row) const override;
    [[nodiscard]] bool isMuted(const QModelIndex& index) const override;
    void drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] bool isNumber(int column) const override { return ItemListModel::isNumber(column); }

private:
    /// What is left of the room of the name.
    [[nodiscard]] static QRect drawFrees(QPainter& painter, const QStyleOptionViewItem& option,
                                         const QModelIndex& index, const QRect& room);

    std::unique_ptr<RowIcons> icons_;
};

}  // namespace brimvault::ui
