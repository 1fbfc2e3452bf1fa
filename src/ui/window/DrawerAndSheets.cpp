#include "ui/window/DrawerAndSheets.h"

#include <utility>

#include "ui/sections/SectionRows.h"

namespace brimvault::ui {

DrawerAndSheets::DrawerAndSheets(MainWindow& window, NotCleanedController& report) : window_(window), report_(report) {
    connect(window_.pbtnLangs(), &QAbstractButton::clicked, this, &DrawerAndSheets::toggleDrawer);
    connect(window_.pDrawer(), &LanguagesDrawer::closeRequested, this, &DrawerAndSheets::toggleDrawer);
    connect(window_.pDrawer(), &LanguagesDrawer::drawerDidClose, this, &DrawerAndSheets::drawerDidClose);
}

void DrawerAndSheets::updateButtonsForPanel(int row) {
    const bool languages = row >= 0 && row < sectionRowCount &&
                           sectionRows()[static_cast<std::size_t>(row)].section == engine::Section::languageResources;
    window_.pbtnLangs()->setVisible(languages);
    setDrawerOpen(languages && bDrawerOpened_ && modalSheetSender_ == nullptr);
}

void DrawerAndSheets::toggleDrawer() {
    if (modalSheetSender_ != nullptr) {
        return;  // it is closed for a sheet
    }
    bDrawerOpened_ = !window_.pDrawer()->isOpen();
    setDrawerOpen(bDrawerOpened_);
}

// The focus must not vanish with the drawer.
void DrawerAndSheets::setDrawerOpen(bool open) {
    if (!open && window_.pDrawer()->isAncestorOf(window_.focusWidget())) {
        window_.pbtnLangs()->setFocus();
    }
    window_.pDrawer()->setOpen(open);
    window_.pbtnLangs()->setOn(open);
}

void DrawerAndSheets::willModalSheetBegin(const QObject* sender) {
    if (window_.pDrawer()->isOpen()) {
        modalSheetSender_ = sender;
        focusWasInDrawer_ = window_.pDrawer()->isAncestorOf(window_.focusWidget());
        setDrawerOpen(false);
    } else if (sender == &report_) {
        report_.showNotCleanedInfoPanelModalFor(&window_);
    }
}

void DrawerAndSheets::drawerDidClose() {
    if (modalSheetSender_ == &report_) {
        report_.showNotCleanedInfoPanelModalFor(&window_);
    }
}

// Meanwhile the user may have selected a section without a drawer.
void DrawerAndSheets::didModalSheetEnd(int row) {
    if (std::exchange(modalSheetSender_, nullptr) != nullptr) {
        updateButtonsForPanel(row);
        if (focusWasInDrawer_ && window_.pDrawer()->isOpen() && window_.pbtnLangs()->hasFocus()) {
            window_.pDrawer()->ptableView()->setFocus();
        }
    }
}

}  // namespace brimvault::ui
