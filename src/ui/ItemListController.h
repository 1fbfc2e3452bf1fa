#pragma once

#include <QObject>
#include <filesystem>
#include <memory>
#include <vector>

#include "engine/DataMan.h"
#include "engine/NotificationCenter.h"
#include "ui/ApplicationController.h"
#include "ui/CheckListener.h"
#include "ui/ItemListModel.h"
#include "ui/TTableView.h"
#include "ui/UtilMod.h"

namespace brimvault::ui {

/// The list of one section of files: it shows what the model holds, keeps the order, and passes on what the user does.
/// Each section's own list names its items and finds their paths. Main thread.
class ItemListController : public QObject {
    Q_OBJECT

public:
    /// Whom a list works with; all of them outlive it.
    struct Surroundings {
        engine::DataMan& pDS;
        CheckListener& pCheckListener;
        ApplicationController& dataSource;
        UtilMod& util;
    };

    ~ItemListController() override;

    [[nodiscard]] engine::Section section() const { return section_; }
    [[nodiscard]] TTableView* view() const { return ptableView_; }

    [[nodiscard]] bool hasItems() const { return model_->rowCount() > 0; }
    [[nodiscard]] qsizetype itemCount() const { return model_->rowCount(); }
    [[nodiscard]] bool hasSelectedItem() const { return getSelectedItem() != nullptr; }
    /// Null when no row is selected.
    [[nodiscard]] std::shared_ptr<engine::FFItem> getSelectedItem() const;
    /// -1 some, 0 none, 1 all; what cannot be removed counts only when it is ticked.
    [[nodiscard]] int getcheckstate() const;
    /// Ticks (1) or unticks (0) everything; what cannot be removed is never ticked.
    void selectAllItems(int state);

    /// Bytes of this section.
    [[nodiscard]] quint64 getSize2CleanMyItems() const;

    /// Check boxes may be changed unless a clean runs.
    void updateCleaningState(bool cleaning);
    void updateTableKeepSelection();

    /// What the menus and buttons offer for the selected item; nothing without one.
    void onClickedRevealInFinder();
    void onClickedGetInfo();
    /// Asks, removes the item for good, and drops it from the list once it is gone.
    void onClickedRemove();
    /// Whether `onClickedRemove` would do anything.
    [[nodiscard]] bool isRemoveEnabled() const;

    /// Where the item lies, for what is done to it.
    [[nodiscard]] virtual std::filesystem::path getPathByItem(const engine::FFItem& item) const = 0;

Q_SIGNALS:
    /// The rows, or what is ticked of them, are other than before.
    void tableUpdated();

protected:
    ItemListController(engine::Section section, const Surroundings& surroundings);
    /// To be called once, at the end of the constructor of a section's own list.
    void awake(const QString& accessibleName);

    [[nodiscard]] virtual QString nameOf(const engine::FFItem& item) const { return item.ppdisplayName(); }
    /// For the tooltip; empty for none.
    [[nodiscard]] virtual std::filesystem::path fullPathOf(const engine::FFItem& item) const {
        return getPathByItem(item);
    }

private:
    [[nodiscard]] ItemListModel::Texts texts() const;
    void observe(const QString& name);
    void setItemChecked(int row, bool checked);
    void didClickTableColumn(int column);
    [[nodiscard]] engine::ItemArray itemsIn(const std::filesystem::path& folder) const;
    void removeFinished(const engine::ItemArray& items, bool success);
    void showMenu(const QPoint& globalPosition);
    [[nodiscard]] int rowsThatStay(const QList<ItemListModel::Item>& items, int above) const;
    void replaceCurrent(int row, bool selected);

    const engine::Section section_;
    engine::DataMan& pDS_;
    CheckListener& pCheckListener_;
    ApplicationController& dataSource_;
    UtilMod& util_;
    ItemListModel* model_ = nullptr;
    TTableView* ptableView_ = nullptr;  ///< the window that shows it becomes its owner
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
