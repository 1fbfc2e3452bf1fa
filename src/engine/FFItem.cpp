#include "engine/FFItem.h"

#include "platform/DisplayText.h"

namespace brimvault::engine {

std::shared_ptr<FFItem> FFItem::initWithName(const std::filesystem::path& name, quint64 nsz) {
    auto item = std::make_shared<FFItem>();
    item->pfname_ = name;
    item->pfSize_ = nsz;
    (void)item->nameKey();  // made here, not where the item is shown
    return item;
}

std::shared_ptr<FFItem> FFItem::initWithPath(const std::filesystem::path& path, quint64 nsz) {
    auto item = initWithName(path.has_filename() ? path.filename() : path.parent_path().filename(), nsz);
    item->pfpath_ = path;
    return item;
}

QString FFItem::ppdisplayName() const { return platform::displayText(pfname_); }

QString FFItem::ppdisplayKeyName() const { return platform::displayText(pfname_.stem()); }

}  // namespace brimvault::engine
