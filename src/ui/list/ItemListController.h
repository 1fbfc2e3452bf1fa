#pragma once

#include <QObject>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <vector>

#include "engine/model/DataMan.h"
#include "engine/notification/NotificationCenter.h"
#include "ui/list/ItemListModel.h"
#include "ui/list/TTableView.h"
#include "ui/services/ApplicationController.h"
#include "ui/services/UtilMod.h"

class QMenu;

namespace brimvault::ui {

/// The controller of the list of one section: it keeps an ItemListModel in step with the engine's model and passes on
/// what the user does. The rows exist from the start, so that showing a list for the first time has only to make its
/// view. Subclasses know their kind of item. Main thread.
class ItemListController : public QObject {
    Q_OBJECT

public:
    /// The objects that a list works with; all of them outlive it.
    struct Dependencies {
        engine::DataMan& pDS;
        CheckListener& pCheckListener;
        ApplicationController& dataSource;
        UtilMod& util;
    };

    ~ItemListController() override;

    [[nodiscard]] engine::Section section() const { return section_; }
    /// Null until `loadView`.
    [[nodiscard]] TTableView* view() const { return ptableView_; }
    /// Makes the view, once.
    void loadView();

    [[nodiscard]] bool hasItems() const { return model_->rowCount() > 0; }
    [[nodiscard]] qsizetype itemCount() const { return model_->rowCount(); }
    [[nodiscard]] bool hasSelectedItem() const { return selectedItem() != nullptr; }
    /// -1 some, 0 none, 1 all; an item that a tick of all leaves alone counts only if it is ticked.
    [[nodiscard]] int getcheckstate() const { return dependencies_.pDS.sums(section_).checkstate(); }
    /// Ticks (1) or unticks (0) everything. Items that cannot be removed are never ticked, and those that are ticked by
    /// hand alone keep their marks when all others are ticked.
    void selectAllItems(int state);

    /// Bytes of this section.
    [[nodiscard]] quint64 getSize2CleanMyItems() const { return dependencies_.pDS.sums(section_).all; }

    /// Disables the check boxes while a clean runs.
    void updateCleaningState(bool cleaning);
    void updateTableKeepSelection();

    /// Actions of menus and buttons for the selected item; without one they do nothing.
    void onClickedRevealInFinder();
    void onClickedGetInfo();

Q_SIGNALS:
    /// The rows or their check marks have changed.
    void tableUpdated();

protected:
    using Item = ItemListModel::Item;

    ItemListController(engine::Section section, const Dependencies& dependencies);
    /// Call it once, at the end of the constructor of the final class.
    void awake(const QString& accessibleName);
    /// Called when the view is made, before it is shown.
    virtual void viewDidLoad() {}

    /// Brings the rows in step with the items of the section that are not empty. Answers how many rows above the given
    /// one have stayed.
    virtual int updateRows(int row) = 0;
    /// The items to list, from an index on: empty ones free no space and are left out.
    template <typename Found>
    [[nodiscard]] static QList<Item> notEmpty(const QList<std::shared_ptr<Found>>& found, qsizetype first = 0) {
        QList<Item> items;
        std::copy_if(found.begin() + first, found.end(), std::back_inserter(items),
                     [](const auto& item) { return item->ppnSize() != 0; });
        return items;
    }
    [[nodiscard]] virtual ItemListModel::Texts texts() const = 0;
    /// The path for revealing and so on.
    [[nodiscard]] virtual std::filesystem::path pathOf(const engine::CleanableItem& item) const = 0;
    /// Adds actions to the context menu, below those for showing the item.
    virtual void addActions(QMenu& /*menu*/) {}

    /// Null when no row is selected.
    [[nodiscard]] Item selectedItem() const;
    [[nodiscard]] const Dependencies& dependencies() const { return dependencies_; }
    [[nodiscard]] ItemListModel& model() const { return *model_; }

private:
    void observe(const QString& name);
    void setItemChecked(int row, bool checked);
    void didClickTableColumn(int column);
    void showMenu(const QPoint& globalPosition);
    void replaceCurrent(int row, bool selected);

    const engine::Section section_;
    const Dependencies dependencies_;
    QString accessibleName_;
    ItemListModel* model_ = nullptr;
    TTableView* ptableView_ = nullptr;  ///< owned by the window that shows it
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
