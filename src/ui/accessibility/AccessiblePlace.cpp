#include "ui/accessibility/AccessiblePlace.h"

namespace brimvault::ui {

QAccessibleInterface* AccessiblePlace::parent() const { return QAccessible::queryAccessibleInterface(list_->view()); }

void* AccessiblePlace::interface_cast(QAccessible::InterfaceType type) {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
}

}  // namespace brimvault::ui
