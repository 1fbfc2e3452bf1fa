#pragma once

#include <QCoreApplication>

#include "ui/list/FileListController.h"

namespace brimvault::ui {

/// The list of the Logs section. Main thread.
class TLogsViewController final : public FileListController {
public:
    explicit TLogsViewController(const Surroundings& surroundings)
        : FileListController(engine::Section::logs, surroundings) {
        awake(QCoreApplication::translate("Section", "Logs"));
    }

    /// An item without a path is known by its name alone.
    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return item.pfpath().empty() ? item.pfname() : item.pfpath();
    }

protected:
    [[nodiscard]] std::filesystem::path fullPathOf(const engine::FFItem& item) const override {
        return UtilMod::getFullLogsPathToItem(item);
    }
};

}  // namespace brimvault::ui
