#pragma once

#include <memory>

#include "ui/list/ItemListController.h"

namespace brimvault::ui {

/// The list of a section; null for a section that has none. Main thread.
[[nodiscard]] std::unique_ptr<ItemListController> makeListController(
    engine::Section section, const ItemListController::Surroundings& surroundings);

}  // namespace brimvault::ui
