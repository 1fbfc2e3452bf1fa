#pragma once

#include <QDeadlineTimer>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTimer>
#include <functional>

#include "ui/controls/IconButton.h"
#include "ui/languages/LanguagesDrawer.h"
#include "ui/list/ListPanel.h"
#include "ui/sections/SidebarPanel.h"
#include "ui/window/StartPage.h"

namespace brimvault::ui {

/// The window: the sections on the left, the start page or the lists on the right. It holds what is shown and decides
/// nothing. Update requests are coalesced to one per frame of the screen. Main thread.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    [[nodiscard]] SidebarPanel* sidebar() const { return sidebar_; }
    [[nodiscard]] StartPage* startPage() const { return startPage_; }
    [[nodiscard]] ListPanel* lists() const { return lists_; }
    /// The languages to keep, and what opens and closes them: on the start page until the lists are shown.
    [[nodiscard]] LanguagesDrawer* pDrawer() const { return pDrawer_; }
    [[nodiscard]] IconButton* pbtnLangs() const { return pbtnLangs_; }

    /// Replaces the start page for good.
    void showLists();

    /// Asked when the user closes the window; it stays open while the answer is false.
    void setMayClose(std::function<bool()> mayClose) { mayClose_ = std::move(mayClose); }

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    SidebarPanel* sidebar_;
    QStackedWidget* right_;
    StartPage* startPage_;
    ListPanel* lists_;
    LanguagesDrawer* pDrawer_;
    IconButton* pbtnLangs_;
    std::function<bool()> mayClose_;
    QDeadlineTimer nextFrame_;  ///< expires when the window may be drawn again
    QTimer nextFrameTimer_;
};

}  // namespace brimvault::ui
