#pragma once

#include <QCoreApplication>

#include "ui/list/FileListController.h"

namespace brimvault::ui {

/// The list of the Trash section. Main thread.
class TTrViewController final : public FileListController {
public:
    explicit TTrViewController(const Surroundings& surroundings)
        : FileListController(engine::Section::trash, surroundings) {
        awake(QCoreApplication::translate("Section", "Trash"));
    }

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return surroundings().util.getFullTrashPathToItem(item);
    }
};

}  // namespace brimvault::ui
