#pragma once

#include "ui/table/RowDelegate.h"

namespace brimvault::ui {

/// Draws the cells of the languages list: check box, flag, name. Main thread.
class LanguageRowDelegate final : public RowDelegate {
    Q_OBJECT

public:
    explicit LanguageRowDelegate(CheckTableView* view) : RowDelegate(view) {}

    /// Points; as wide as a check box and a flag need with their margins.
    static constexpr int checkColumnWidth = 36;
    static constexpr int iconColumnWidth = 33;

protected:
    void drawGround(QPainter& painter, const QRect& cell, int row) const override;
    void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] int margin(int column) const override;
};

}  // namespace brimvault::ui
