#include "ui/TChViewController.h"

#include "ui/UtilMod.h"

namespace brimvault::ui {

TChViewController::TChViewController(engine::DataMan& pDS, CheckListener& pCheckListener)
    : ItemListController(engine::Section::caches, pDS, pCheckListener) {
    awake(tr("Caches"));
}

std::filesystem::path TChViewController::getPathByItem(const engine::FFItem& item) const {
    return UtilMod::getFullCachePathToItem(item);
}

std::filesystem::path TChViewController::fullPathOf(const engine::FFItem& item) const {
    return UtilMod::getFullCachePathToItem(item);
}

QString TChViewController::getDisplayText(const QString& text) {
    const QLatin1String prefix("com.");
    return text.size() > prefix.size() && text.startsWith(prefix) ? text.mid(prefix.size()) : text;
}

}  // namespace brimvault::ui
