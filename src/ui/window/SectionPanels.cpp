#include "ui/window/SectionPanels.h"

#include <QLocale>

#include "engine/model/PlaceTexts.h"
#include "ui/list/ListControllers.h"

namespace brimvault::ui {

using engine::Section;

namespace {

QString countText(Section section, qsizetype items, bool more) {
    const QString number = QLocale().toString(items);
    if (section == Section::languageResources) {
        if (items == 1) {
            return more ? SectionPanels::tr("1 application so far") : SectionPanels::tr("1 application");
        }
        return (more ? SectionPanels::tr("%1 applications so far") : SectionPanels::tr("%1 applications")).arg(number);
    }
    if (items == 1) {
        return more ? SectionPanels::tr("1 item so far") : SectionPanels::tr("1 item");
    }
    return (more ? SectionPanels::tr("%1 items so far") : SectionPanels::tr("%1 items")).arg(number);
}

}  // namespace

SectionPanels::SectionPanels(ListPanel& panel, TSectionViewController& sections, ApplicationController& application,
                             UtilMod& util)
    : panel_(panel), sections_(sections), application_(application), util_(util) {
    for (int row = 0; row < sectionRowCount; ++row) {
        createController(row);
    }
    connect(&util_.trashMoves(), &TrashMoves::changed, this, &SectionPanels::updateMovedLine);
    connect(panel_.movedLine(), &MovedLine::undoRequested, this, &SectionPanels::undoMove);
}

void SectionPanels::createController(int row) {
    auto& slot = pDynControllers_[static_cast<std::size_t>(row)];
    slot = makeListController(sectionRows()[static_cast<std::size_t>(row)].section,
                              {sections_.getAppResDS(), sections_, application_, util_});
    connect(slot.get(), &ItemListController::tableUpdated, this, [this, row] {
        if (row == activeRow_) {
            updateCurrentList();
        }
    });
}

void SectionPanels::show(int row) {
    activeRow_ = row;
    auto& shown = controller(row);
    if (shown.view() == nullptr) {
        loadView(shown);
    }
    showPanel(row);
}

void SectionPanels::loadView(ItemListController& controller) {
    controller.loadView();
    panel_.addList(controller.view());
}

void SectionPanels::showPanel(int row) {
    for (const auto& slot : pDynControllers_) {
        if (slot->view() != nullptr) {
            slot->view()->setVisible(slot.get() == &controller(row));
        }
    }
    updateCurrentList();
}

void SectionPanels::updateCurrentList() {
    updateTitle();
    updateMovedLine();
    updateSelectAllButton();
    Q_EMIT currentListChanged();
}

void SectionPanels::updateMovedLine() {
    const auto* current = getCurrentSectionController();
    const auto& moves = util_.trashMoves();
    const bool shows = current != nullptr && current->section() == Section::downloads;
    panel_.movedLine()->setMoved(shows ? moves.bytes() : 0, shows ? moves.lastName() : QString());
}

// The button cannot be used meanwhile: the keyboard goes to the list, and comes back if there is more to put back. A
// second Space on the button would tick a row otherwise.
void SectionPanels::undoMove() {
    auto* current = qobject_cast<FileListController*>(getCurrentSectionController());
    if (current != nullptr) {
        const bool hadFocus = panel_.movedLine()->undoButton()->hasFocus();
        current->onClickedUndoMove();
        if (hadFocus && current->hasItems()) {
            current->view()->setFocus();
            panel_.movedLine()->refocusButton(current->view());
        }
    }
}

ItemListController* SectionPanels::getCurrentSectionController() const {
    return activeRow_ < 0 ? nullptr : &controller(activeRow_);
}

void SectionPanels::refreshLists() {
    for (const auto& controller : pDynControllers_) {
        controller->updateTableKeepSelection();
    }
}

void SectionPanels::updateCleaningState(bool cleaning) {
    for (const auto& controller : pDynControllers_) {
        controller->updateCleaningState(cleaning);
    }
}

// A section without items shows a note in the place of its list.
void SectionPanels::updateTitle() {
    const auto* current = getCurrentSectionController();
    if (current == nullptr) {
        return;
    }
    const bool scanning = sections_.isBeingScanned(current->section());
    const bool listed = current->hasItems();
    panel_.setTitle(sectionTitle(sectionRows()[static_cast<std::size_t>(activeRow_)]),
                    listed ? countText(current->section(), current->itemCount(), scanning) : QString());
    const auto& places = sections_.getAppResDS().places(current->section());
    const QString refused = engine::placeTexts::refused(places);
    panel_.setPlaces(listed ? engine::placeTexts::unusual(places) : QString(), engine::placeTexts::all(places));
    panel_.setNote(scanning            ? tr("Scanning...")
                   : refused.isEmpty() ? sections_.subtitle(activeRow_)
                                       : sections_.subtitle(activeRow_) + QStringLiteral("\n\n") + refused);
    panel_.setListShown(current->view(), listed);
}

void SectionPanels::updateSelectAllButton() {
    const auto* current = getCurrentSectionController();
    panel_.pbtnSelectAll()->setSelAllChecked(current == nullptr ? 0 : current->getcheckstate());
}

void SectionPanels::toggleSelectAll() {
    auto* current = getCurrentSectionController();
    if (current == nullptr) {
        return;
    }
    const bool checked = panel_.pbtnSelectAll()->checkState() == Qt::Checked;
    current->selectAllItems(checked ? 1 : 0);
    sections_.setSectionChecked(current->section(), checked);
}

}  // namespace brimvault::ui
