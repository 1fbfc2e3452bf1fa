#pragma once

#include <QCoreApplication>

#include "ui/list/FileListController.h"

namespace brimvault::ui {

/// The list of the Downloads section. Main thread.
class TDwnViewController final : public FileListController {
public:
    explicit TDwnViewController(const Surroundings& surroundings)
        : FileListController(engine::Section::downloads, surroundings) {
        awake(QCoreApplication::translate("Section", "Downloads"));
    }

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return surroundings().util.getFullDownloadPathToItem(item);
    }
};

}  // namespace brimvault::ui
