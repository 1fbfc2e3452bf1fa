#include "langres/LangItem.h"

namespace brimvault::langres {

LangItem LangItem::initWithName(const QString& identifier, bool bneed, platform::UserDefaults& defaults) {
    LangItem item(identifier, bneed, defaults);
    item.initFromDefaults();
    return item;
}

bool LangItem::initFromDefaults() {
    const auto stored = defaults_->boolean(keyString());
    bNeeded_ = stored.value_or(bNeeded_);
    return stored.has_value();
}

void LangItem::setNEED(bool needed) {
    bNeeded_ = needed;
    saveToDefaults();
}

}  // namespace brimvault::langres
