#include "engine/model/LocalizationItem.h"

#include "platform/LocaleIdentifiers.h"

namespace brimvault::engine {

std::shared_ptr<LocalizationItem> LocalizationItem::initWithPath(const std::filesystem::path& path, quint64 size) {
    auto item = std::make_shared<LocalizationItem>();
    item->nlocSize = size;
    item->frees = size;
    item->plocNameId =
        platform::LocaleIdentifiers::canonicalLocaleIdentifierFromString(QString::fromStdString(path.stem().native()));
    item->plocPath = path;
    return item;
}

}  // namespace brimvault::engine
