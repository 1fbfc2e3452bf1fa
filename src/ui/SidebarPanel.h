#pragma once

#include <QWidget>

#include "ui/ActionButton.h"
#include "ui/SectionsTableView.h"

namespace brimvault::ui {

/// The left of the window: the program's name, the section list, the scan button. Main thread.
class SidebarPanel final : public QWidget {
    Q_OBJECT

public:
    explicit SidebarPanel(QWidget* parent = nullptr);

    [[nodiscard]] SectionsTableView* sections() const { return sections_; }
    [[nodiscard]] ActionButton* pbtnScan() const { return pbtnScan_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SectionsTableView* sections_;
    ActionButton* pbtnScan_;
};

}  // namespace brimvault::ui
