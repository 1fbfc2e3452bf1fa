#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <optional>

#include "engine/model/NotCleanedRows.h"
#include "ui/controls/SheetCoordinator.h"
#include "ui/report/NotCleanedSheet.h"

namespace brimvault::ui {

/// Tells the user what a clean could not remove: one list of messages, grouped by section, in a sheet over the window.
/// It holds the rows of the list; titles cannot be selected. Main thread.
class NotCleanedController final : public QAbstractListModel {
    Q_OBJECT

public:
    /// The application's main window, which outlives it.
    explicit NotCleanedController(QWidget* mainWindow) : mainWindow_(mainWindow) {}
    ~NotCleanedController() override;

    /// Whether the user stopped the clean that the next report is of.
    void setCleanStopped(bool stopped) { cleanStopped_ = stopped; }
    /// Builds the rows from what each section left, none and nothing meaning the same. Where anything was left, the
    /// application controller decides when and over which window the report is shown; without one it is shown at once.
    void updateNotCleanedRusultsApps(const std::optional<engine::NotCleanedApplications>& apps,
                                     const std::optional<engine::NotRemovedDictionary>& dwns,
                                     const std::optional<engine::NotRemovedDictionary>& caches,
                                     const std::optional<engine::NotRemovedDictionary>& trash,
                                     const std::optional<engine::NotRemovedDictionary>& logs,
                                     SheetCoordinator* appDelegate);
    /// Shows the report over the main window; without rows there is none.
    void showNotCleanedInfoPanel() { showNotCleanedInfoPanelModalFor(mainWindow_); }
    void showNotCleanedInfoPanelModalFor(QWidget* window);
    /// Closes the report and forgets its messages. The application controller hears of it a tenth of a second later.
    void doCloseNotCleanedPanel();

    /// The sheet on show; null for none.
    [[nodiscard]] NotCleanedSheet* pNotCleanedInfoPanel() const { return pNotCleanedInfoPanel_; }
    [[nodiscard]] const engine::NotCleanedRows& rows() const { return rows_; }
    [[nodiscard]] bool isGroupRow(int row) const { return rows_.isGroupRow(row); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void makePanel(QWidget* window);
    void copy(const QList<int>& rows) const;

    QWidget* mainWindow_;
    QPointer<NotCleanedSheet> pNotCleanedInfoPanel_;  ///< the window's, for as long as it is shown
    engine::NotCleanedRows rows_;
    SheetCoordinator* pAppDelegate_ = nullptr;
    bool cleanStopped_ = false;
};

}  // namespace brimvault::ui
