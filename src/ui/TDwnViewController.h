#pragma once

#include "ui/ItemListController.h"

namespace brimvault::ui {

/// The list of the Downloads section. Main thread.
class TDwnViewController final : public ItemListController {
public:
    explicit TDwnViewController(const Surroundings& surroundings)
        : ItemListController(engine::Section::downloads, surroundings) {
        awake(tr("Downloads"));
    }

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return UtilMod::getFullDownloadPathToItem(item);
    }
};

}  // namespace brimvault::ui
