#pragma once

#include <QObject>
#include <array>
#include <memory>

#include "ui/list/ItemListController.h"
#include "ui/list/ListPanel.h"
#include "ui/sections/SectionRows.h"
#include "ui/sections/TSectionViewController.h"
#include "ui/services/ApplicationController.h"

namespace brimvault::ui {

/// The lists of the sections, of which one is shown at a time, its view made when it is shown first; with the title
/// above them and the check box that ticks all of one. Main thread.
class SectionPanels final : public QObject {
    Q_OBJECT

public:
    /// All of them must outlive this object.
    SectionPanels(ListPanel& panel, TSectionViewController& sections, ApplicationController& application,
                  UtilMod& util);

    /// Shows the list of the section in a row of the section list.
    void show(int row);
    /// The list on show; null before the first.
    [[nodiscard]] ItemListController* getCurrentSectionController() const;

    /// Shows everything that the model holds.
    void refreshLists();
    /// Their check boxes can be used, unless a clean or a single removal runs.
    void updateCleaningState(bool cleaning);
    void updateTitle();
    void updateSelectAllButton();
    /// Ticks all of the list on show, or none, as its check box was clicked.
    void toggleSelectAll();
    /// Puts back what was moved last from the list on show to the Trash.
    void undoMove();

Q_SIGNALS:
    /// Another list is on show, or the one on show holds other rows or ticks.
    void currentListChanged();

private:
    void createController(int row);
    void updateCurrentList();
    void updateMovedLine();
    [[nodiscard]] ItemListController& controller(int row) const {
        return *pDynControllers_[static_cast<std::size_t>(row)];
    }
    void loadView(ItemListController& controller);
    void showPanel(int row);

    ListPanel& panel_;
    TSectionViewController& sections_;
    ApplicationController& application_;
    UtilMod& util_;
    std::array<std::unique_ptr<ItemListController>, sectionRowCount> pDynControllers_;
    int activeRow_ = -1;
};

}  // namespace brimvault::ui
