#include "ui/controls/SelectAllButton.h"

#include <QSignalBlocker>

namespace brimvault::ui {

SelectAllButton::SelectAllButton(QWidget* parent) : TitledCheckBox(tr("Select All"), parent) {
    setAccessibleName(tr("Select All"));
    updateBtnSelectAllLook();
}

void SelectAllButton::setSelAllChecked(int state) {
    const QSignalBlocker quiet(this);
    setTristate(state < 0);
    setCheckState(state < 0 ? Qt::PartiallyChecked : state == 0 ? Qt::Unchecked : Qt::Checked);
    updateBtnSelectAllLook();
}

void SelectAllButton::nextCheckState() {
    const bool all = checkState() == Qt::Checked;  // read first: setTristate(false) turns mixed into checked
    setTristate(false);
    setCheckState(all ? Qt::Unchecked : Qt::Checked);
    updateBtnSelectAllLook();
}

void SelectAllButton::updateBtnSelectAllLook() {
    setText(checkState() == Qt::Checked ? tr("Unselect All") : tr("Select All"));
    update();
}

// As wide as the longer of its texts, so that nothing moves when it changes.
QSize SelectAllButton::sizeHint() const { return sizeWith(tr("Unselect All")).expandedTo(sizeWith(tr("Select All"))); }

}  // namespace brimvault::ui
