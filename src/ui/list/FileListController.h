#pragma once

#include <filesystem>
#include <memory>

#include "engine/model/FFItem.h"
#include "ui/list/ItemListController.h"

namespace brimvault::ui {

/// The list of a section of files, whose items can also be removed singly. Subclasses know the paths of their items.
/// Main thread.
class FileListController : public ItemListController {
    Q_OBJECT

public:
    /// Null when no row is selected.
    [[nodiscard]] std::shared_ptr<engine::FFItem> getSelectedItem() const;

    /// Asks, removes the selected item permanently, and then drops it from the list.
    void onClickedRemove();
    /// Whether `onClickedRemove` would do anything.
    [[nodiscard]] bool isRemoveEnabled() const;

    /// Moves the selected item to the Trash and then drops it from the list; in the list of Downloads alone.
    void onClickedMoveToTrash();
    [[nodiscard]] bool isMoveToTrashEnabled() const { return isMovedToTrash() && isRemoveEnabled(); }
    /// Puts the item back that was moved last, and into the list.
    void onClickedUndoMove();
    [[nodiscard]] bool isUndoMoveEnabled() const;

    /// The path for removing, revealing and so on.
    [[nodiscard]] virtual std::filesystem::path getPathByItem(const engine::FFItem& item) const = 0;

protected:
    FileListController(engine::Section section, const Dependencies& dependencies);
    [[nodiscard]] virtual QString nameOf(const engine::FFItem& item) const { return item.ppdisplayName(); }
    /// For the tooltip; empty for none.
    [[nodiscard]] virtual std::filesystem::path fullPathOf(const engine::FFItem& item) const {
        return getPathByItem(item);
    }

private:
    void viewDidLoad() override;
    int updateRows(int row) override;
    [[nodiscard]] ItemListModel::Texts texts() const override;
    [[nodiscard]] std::filesystem::path pathOf(const engine::CleanableItem& item) const override;
    void addActions(QMenu& menu) override;
    [[nodiscard]] QString tooltipOf(const engine::FFItem& item) const;
    [[nodiscard]] engine::ItemArray itemsGoingWith(const engine::FFItem& item, const std::filesystem::path& path) const;
    enum class Names { gone, inTrash };
    void removed(const engine::ItemArray& items, Names names);
    void restored(const std::shared_ptr<engine::FFItem>& item);
    [[nodiscard]] bool isMovedToTrash() const { return section() == engine::Section::downloads; }
    /// Nothing is going on beside which items may go or come back.
    [[nodiscard]] bool isIdle() const;

    quint64 generation_ = 0;    ///< of the section's items, at the last update of the rows
    qsizetype takenCount_ = 0;  ///< how many of them were there at that time
};

}  // namespace brimvault::ui
