#pragma once

#include "ui/ItemListController.h"

namespace brimvault::ui {

/// The list of the Trash section. Main thread.
class TTrViewController final : public ItemListController {
public:
    explicit TTrViewController(const Surroundings& surroundings)
        : ItemListController(engine::Section::trash, surroundings) {
        awake(tr("Trash"));
    }

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return UtilMod::getFullTrashPathToItem(item);
    }
};

}  // namespace brimvault::ui
