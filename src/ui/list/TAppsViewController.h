#pragma once

#include <memory>

#include "engine/model/AppItemData.h"
#include "ui/list/ItemListController.h"

namespace brimvault::ui {

/// The list of the Language Resources section: the applications, with what their unneeded languages hold and how many
/// these are. Nothing of it is removed singly. Main thread.
class TAppsViewController final : public ItemListController {
    Q_OBJECT

public:
    explicit TAppsViewController(const Surroundings& surroundings);

    /// Null when no row is selected.
    [[nodiscard]] std::shared_ptr<engine::AppItemData> getSelectedApp() const;

private:
    void viewDidLoad() override { view()->setCheckSelects(false); }
    int updateRows(int row) override { return model().setItems(notEmpty(surroundings().pDS.getAppsArray()), row); }
    [[nodiscard]] ItemListModel::Texts texts() const override;
    [[nodiscard]] std::filesystem::path pathOf(const engine::CleanableItem& item) const override;
};

}  // namespace brimvault::ui
