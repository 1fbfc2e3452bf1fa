#pragma once

#include <QAbstractItemView>
#include <QStyleOptionViewItem>
#include <utility>

#include "ui/controls/MCheckCell.h"

namespace brimvault::ui {

/// Asks the model to tick an unticked check box or to untick a ticked one. The mouse, the keyboard and assistive
/// clients all come through here. Main thread.
inline void toggleCheck(QAbstractItemView* view, const QModelIndex& check) {
    const bool checked = check.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    view->model()->setData(check, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

/// A mouse press of a check box in a view: the box is shown as pressed until the release, which toggles it. Main
/// thread.
class CheckPress {
public:
    explicit CheckPress(QAbstractItemView* view) : view_(view) {}

    void begin(const QModelIndex& check) {
        check_ = check;
        view_->viewport()->update();
    }
    /// Ends the press and toggles the box if the pointer is still over it. False if no box was pressed.
    template <typename IsOver>
    bool end(IsOver isOver) {
        const QModelIndex check = std::exchange(check_, QPersistentModelIndex());
        if (!check.isValid()) {
            return false;
        }
        view_->viewport()->update();
        if (isOver(check)) {
            toggleCheck(view_, check);
        }
        return true;
    }
    /// The pressed check box; invalid for none.
    [[nodiscard]] QModelIndex check() const { return check_; }

private:
    QAbstractItemView* view_;
    QPersistentModelIndex check_;  ///< follows its row, which may move while the button is held
};

/// The check box of a row as it is drawn now.
[[nodiscard]] inline MCheckCell checkCell(const QStyleOptionViewItem& option, const QModelIndex& check,
                                          const QModelIndex& pressed) {
    MCheckCell cell;
    cell.state = static_cast<Qt::CheckState>(check.data(Qt::CheckStateRole).toInt());
    cell.highlighted = pressed == check;
    cell.hovered = (option.state & QStyle::State_MouseOver) != 0;
    cell.enabled = check.flags().testFlag(Qt::ItemIsUserCheckable);
    cell.ground = (option.state & QStyle::State_Selected) != 0 ? CheckGround::selected : CheckGround::plain;
    return cell;
}

}  // namespace brimvault::ui
