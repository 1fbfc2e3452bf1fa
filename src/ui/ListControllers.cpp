#include "ui/ListControllers.h"

#include "ui/TAppsViewController.h"
#include "ui/TChViewController.h"
#include "ui/TDwnViewController.h"
#include "ui/TLogsViewController.h"
#include "ui/TTrViewController.h"

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
