#pragma once

#include "ui/ItemListController.h"

namespace brimvault::ui {

/// The list of the Caches section. Main thread.
class TChViewController final : public ItemListController {
public:
    TChViewController(engine::DataMan& pDS, CheckListener& pCheckListener);

    [[nodiscard]] std::filesystem::path getPathByItem(const engine::FFItem& item) const override;
    /// The name without a leading "com."; a text that is not longer than that is left as it is.
    [[nodiscard]] static QString getDisplayText(const QString& text);

protected:
    [[nodiscard]] std::filesystem::path fullPathOf(const engine::FFItem& item) const override;
};

}  // namespace brimvault::ui
