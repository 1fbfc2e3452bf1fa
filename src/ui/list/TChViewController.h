#pragma once

#include <QCoreApplication>

#include "ui/list/FileListController.h"

namespace brimvault::ui {

/// The list of the Caches section. Main thread.
class TChViewController final : public FileListController {
public:
    explicit TChViewController(const Surroundings& surroundings)
        : FileListController(engine::Section::caches, surroundings) {
        awake(QCoreApplication::translate("Section", "Caches"));
    }

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override {
        return surroundings().util.getFullCachePathToItem(item);
    }
    /// The name without a leading "com."; a text that is not longer than that is left as it is.
    [[nodiscard]] static QString getDisplayText(const QString& text);
};

}  // namespace brimvault::ui
