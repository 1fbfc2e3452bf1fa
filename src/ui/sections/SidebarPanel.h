#pragma once

#include <QWidget>

#include "ui/controls/IconButton.h"
#include "ui/controls/WhiteTitleButton.h"
#include "ui/sections/SectionsTableView.h"

namespace brimvault::ui {

/// The left of the window: the program's name and its menu, the section list, the scan button. Main thread.
class SidebarPanel final : public QWidget {
    Q_OBJECT

public:
    explicit SidebarPanel(QWidget* parent = nullptr);

    [[nodiscard]] IconButton* pbtnMenu() const { return pbtnMenu_; }
    [[nodiscard]] SectionsTableView* sections() const { return sections_; }
    [[nodiscard]] WhiteTitleButton* pbtnScan() const { return pbtnScan_; }
    [[nodiscard]] ProgressIndicator* pProgressScan() const { return pProgressScan_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconButton* pbtnMenu_;
    SectionsTableView* sections_;
    WhiteTitleButton* pbtnScan_;
    ProgressIndicator* pProgressScan_;
};

}  // namespace brimvault::ui
