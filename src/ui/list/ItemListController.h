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

/// The list of one section: it shows what the model holds, keeps the order, and passes on what the user does. What its
/// items are, and what else can be done to them, is each list's own. The rows follow the model from the start, so that
/// they need not be made when the list is shown first; the view is made then. Main thread.
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
    /// Null until `loadView`.
    [[nodiscard]] TTableView* view() const { return ptableView_; }
    /// Makes the view, once.
    void loadView();

    [[nodiscard]] bool hasItems() const { return model_->rowCount() > 0; }
    [[nodiscard]] qsizetype itemCount() const { return model_->rowCount(); }
    [[nodiscard]] bool hasSelectedItem() const { return selectedItem() != nullptr; }
    /// -1 some, 0 none, 1 all; what cannot be removed counts only when it is ticked.
    [[nodiscard]] int getcheckstate() const { return surroundings_.pDS.sums(section_).checkstate(); }
    /// Ticks (1) or unticks (0) everything; what cannot be removed is never ticked.
    void selectAllItems(int state);

    /// Bytes of this section.
    [[nodiscard]] quint64 getSize2CleanMyItems() const { return surroundings_.pDS.sums(section_).all; }

    /// Check boxes may be changed unless a clean runs.
    void updateCleaningState(bool cleaning);
    void updateTableKeepSelection();

    /// What the menus and buttons offer for the selected item; nothing without one.
    void onClickedRevealInFinder();
    void onClickedGetInfo();

Q_SIGNALS:
    /// The rows, or what is ticked of them, are other than before.
    void tableUpdated();

protected:
    using Item = ItemListModel::Item;

    ItemListController(engine::Section section, const Surroundings& surroundings);
    /// To be called once, at the end of the constructor of a section's own list.
    void awake(const QString& accessibleName);
    /// The view is there, and not yet shown.
    virtual void viewDidLoad() {}

    /// Has the rows be what the model holds for the section and is not empty. Answers how many rows above the one given
    /// have stayed.
    virtual int updateRows(int row) = 0;
    /// What is empty frees nothing, and is not listed. Of what was found, from the index on.
    template <typename Found>
    [[nodiscard]] static QList<Item> notEmpty(const QList<std::shared_ptr<Found>>& found, qsizetype first = 0) {
        QList<Item> items;
        std::copy_if(found.begin() + first, found.end(), std::back_inserter(items),
                     [](const auto& item) { return item->ppnSize() != 0; });
        return items;
    }
    [[nodiscard]] virtual ItemListModel::Texts texts() const = 0;
    /// Where the item lies, for what is done to it.
    [[nodiscard]] virtual std::filesystem::path pathOf(const engine::CleanableItem& item) const = 0;
    /// The menu of a row offers to show the item; a list may offer more.
    virtual void addActions(QMenu& /*menu*/) {}

    /// Null when no row is selected.
    [[nodiscard]] Item selectedItem() const;
    [[nodiscard]] const Surroundings& surroundings() const { return surroundings_; }
    [[nodiscard]] ItemListModel& model() const { return *model_; }

private:
    void observe(const QString& name);
    void setItemChecked(int row, bool checked);
    void didClickTableColumn(int column);
    void showMenu(const QPoint& globalPosition);
    void replaceCurrent(int row, bool selected);

    const engine::Section section_;
    const Surroundings surroundings_;
    QString accessibleName_;
    ItemListModel* model_ = nullptr;
    TTableView* ptableView_ = nullptr;  ///< the window that shows it becomes its owner
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
