#include "app/CleanOperations.h"

#include "langres/removal/CAOperation.h"

namespace brimvault::app {

engine::CleanTable cleanOperations(engine::PrivilegedRemover& remover, engine::RemovalHistory& history) {
    auto table = engine::CleanTable::fileSections(remover);
    table.history = &history;
    table.applications = [&remover](const engine::ApplicationArray& items,
                                    const std::shared_ptr<engine::FCleanProps>& props) {
        return std::make_shared<langres::CAOperation>(items, props, remover);
    };
    return table;
}

}  // namespace brimvault::app
