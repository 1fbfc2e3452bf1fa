#pragma once

#include <QAbstractItemView>

namespace brimvault::ui {

/// Asks the view's model to tick what is not ticked, and the other way round: the one way in which the mouse, the
/// keyboard and an assistive client change a check box. Main thread.
inline void toggleCheck(QAbstractItemView* view, const QModelIndex& check) {
    const bool checked = check.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    view->model()->setData(check, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

}  // namespace brimvault::ui
