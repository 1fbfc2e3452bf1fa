#include "ui/controls/AccessibleControls.h"

#include <QCheckBox>
#include <QTimer>

#include "ui/controls/IconButton.h"
#include "ui/controls/PlashkaView.h"

namespace brimvault::ui {

AccessibleButton::AccessibleButton(QAbstractButton* button)
    : QAccessibleWidget(button,
                        qobject_cast<QCheckBox*>(button) == nullptr ? QAccessible::Button : QAccessible::CheckBox),
      button_(button) {}

QString AccessibleButton::text(QAccessible::Text kind) const {
    if (const auto* status = qobject_cast<PlashkaView*>(button_); status != nullptr && kind == QAccessible::Name) {
        return status->spokenText();
    }
    const QString given = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && given.isEmpty() ? button_->text() : given;
}

bool AccessibleButton::isUsable(const QAbstractButton* button) {
    return button->isEnabled() && button->isVisible() && !Sheet::covers(button);
}

QAccessible::State AccessibleButton::state() const {
    auto state = QAccessibleWidget::state();
    state.disabled = !button_->isEnabled() || Sheet::covers(button_);
    state.pressed = button_->isDown();
    if (const auto* box = qobject_cast<QCheckBox*>(button_)) {
        state.checkable = true;
        state.checked = box->checkState() == Qt::Checked;
        state.checkStateMixed = box->checkState() == Qt::PartiallyChecked;
    } else {
        state.checkable = button_->isCheckable();
        state.checked = button_->isChecked();
    }
    if (const auto* icon = qobject_cast<IconButton*>(button_)) {
        state.expandable = icon->opensSomething();
        state.expanded = icon->isOn();
        state.hasPopup = icon->opensMenu();
        state.collapsed = icon->opensSomething() && !icon->isOn();
    }
    return state;
}

QString AccessibleButton::clickAction() const {
    return role() == QAccessible::CheckBox || button_->isCheckable() ? toggleAction() : pressAction();
}

QStringList AccessibleButton::actionNames() const {
    return isUsable(button_) ? QStringList{clickAction()} + QAccessibleWidget::actionNames() : QStringList();
}

// The click is queued: it may open a modal question, and the client waits for the return of this call until its
// timeout. By then the button may be hidden.
void AccessibleButton::doAction(const QString& action) {
    if (!isUsable(button_)) {
        return;
    }
    if (action == clickAction()) {
        QTimer::singleShot(0, button_, [button = button_] {
            if (isUsable(button)) {
                button->click();
            }
        });
    } else {
        QAccessibleWidget::doAction(action);
    }
}

}  // namespace brimvault::ui
