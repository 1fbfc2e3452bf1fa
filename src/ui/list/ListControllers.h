#pragma once

#include <memory>

#include "engine/model/AppItemData.h"
#include "ui/list/FileListController.h"

namespace brimvault::ui {

// The lists of the five sections. All on the main thread.

class TChViewController final : public FileListController {
public:
    explicit TChViewController(const Dependencies& dependencies);

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override;

    // Kept for callers outside of the window.
    /// The name without a leading "com."; a text that is not longer than that is left as it is.
    [[nodiscard]] static QString getDisplayText(const QString& text);
};

class TLogsViewController final : public FileListController {
public:
    explicit TLogsViewController(const Dependencies& dependencies);

    /// An item without a path is known by its name alone.
    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override;

protected:
    [[nodiscard]] std::filesystem::path fullPathOf(const engine::FFItem& item) const override;
};

class TDwnViewController final : public FileListController {
public:
    explicit TDwnViewController(const Dependencies& dependencies);

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override;
};

class TTrViewController final : public FileListController {
public:
    explicit TTrViewController(const Dependencies& dependencies);

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override;
};

/// Language Resources: the applications, with the size and the number of their localizations that can be removed. None
/// of them is removed singly.
class TAppsViewController final : public ItemListController {
public:
    explicit TAppsViewController(const Dependencies& dependencies);

    /// Null when no row is selected.
    [[nodiscard]] std::shared_ptr<engine::AppItemData> getSelectedApp() const;

private:
    void viewDidLoad() override { view()->setCheckSelects(false); }
    int updateRows(int row) override { return model().setItems(notEmpty(dependencies().pDS.getAppsArray()), row); }
    [[nodiscard]] ItemListModel::Texts texts() const override;
    [[nodiscard]] std::filesystem::path pathOf(const engine::CleanableItem& item) const override;
};

/// The list of a section; null for a section that has none.
[[nodiscard]] std::unique_ptr<ItemListController> makeListController(
    engine::Section section, const ItemListController::Dependencies& dependencies);

}  // namespace brimvault::ui
