#include "ui/list/ListControllers.h"

#include "ui/list/TAppsViewController.h"
#include "ui/list/TChViewController.h"
#include "ui/list/TDwnViewController.h"
#include "ui/list/TLogsViewController.h"
#include "ui/list/TTrViewController.h"

namespace brimvault::ui {

using engine::Section;

std::unique_ptr<ItemListController> makeListController(Section section,
                                                       const ItemListController::Surroundings& surroundings) {
    switch (section) {
        case Section::caches:
            return std::make_unique<TChViewController>(surroundings);
        case Section::logs:
            return std::make_unique<TLogsViewController>(surroundings);
        case Section::downloads:
            return std::make_unique<TDwnViewController>(surroundings);
        case Section::trash:
            return std::make_unique<TTrViewController>(surroundings);
        case Section::languageResources:
            return std::make_unique<TAppsViewController>(surroundings);
    }
    return nullptr;
}

}  // namespace brimvault::ui
