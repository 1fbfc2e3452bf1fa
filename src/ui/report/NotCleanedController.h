#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <optional>

#include "engine/model/NotCleanedRows.h"
#include "ui/controls/SheetCoordinator.h"
#include "ui/report/NotCleanedSheet.h"

namespace brimvault::ui {

/// The report of what a clean could not remove: a list of messages, grouped by section, in a sheet over the window. It
/// is the sheet's controller and the model of its list in one; `engine::NotCleanedRows` builds the rows. Titles cannot
/// be selected. Main thread.
class NotCleanedController final : public QAbstractListModel {
    Q_OBJECT

public:
    /// The application's main window outlives it.
    explicit NotCleanedController(QWidget* mainWindow) : mainWindow_(mainWindow) {}
    ~NotCleanedController() override;

    /// How a clean ended: it took all but what the report tells of, or nothing; or the user stopped it.
    enum class CleanEnd { tookTheRest, tookNothing, stopped };
    /// How the clean of the next report ended.
    void setCleanEnd(CleanEnd end) { cleanEnd_ = end; }
    /// Builds the rows from the reasons of each section; `nullopt` is the same as an empty dictionary. If there are
    /// any, the application controller decides when and over which window to show the report; without one it is shown
    /// at once.
    void updateNotCleanedRusultsApps(const std::optional<engine::NotCleanedApplications>& apps,
                                     const std::optional<engine::NotRemovedDictionary>& dwns,
                                     const std::optional<engine::NotRemovedDictionary>& caches,
                                     const std::optional<engine::NotRemovedDictionary>& trash,
                                     const std::optional<engine::NotRemovedDictionary>& logs,
                                     SheetCoordinator* appDelegate);
    /// Shows the report over the main window; does nothing without rows.
    void showNotCleanedInfoPanel() { showNotCleanedInfoPanelModalFor(mainWindow_); }
    void showNotCleanedInfoPanelModalFor(QWidget* window);
    /// Closes the report and drops its messages. The application controller is told after 100 ms.
    void doCloseNotCleanedPanel();

    /// The visible sheet; null for none.
    [[nodiscard]] NotCleanedSheet* pNotCleanedInfoPanel() const { return pNotCleanedInfoPanel_; }
    [[nodiscard]] const engine::NotCleanedRows& rows() const { return rows_; }
    [[nodiscard]] bool isGroupRow(int row) const { return rows_.isGroupRow(row); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void makePanel(QWidget* window);
    [[nodiscard]] QString note() const;
    void copy(const QList<int>& rows) const;

    QWidget* mainWindow_;
    QPointer<NotCleanedSheet> pNotCleanedInfoPanel_;  ///< owned by the window while it is shown
    engine::NotCleanedRows rows_;
    SheetCoordinator* pAppDelegate_ = nullptr;
    CleanEnd cleanEnd_ = CleanEnd::tookTheRest;
};

}  // namespace brimvault::ui
