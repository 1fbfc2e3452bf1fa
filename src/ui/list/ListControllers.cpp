#include "ui/list/ListControllers.h"

#include <QCoreApplication>

#include "ui/table/RowPicture.h"

namespace brimvault::ui {

using engine::Section;

namespace {

const engine::AppItemData& application(const engine::CleanableItem& item) {
    return static_cast<const engine::AppItemData&>(item);
}

// Other packages, plug-ins for instance, get the picture of a folder.
RowPicture packagePicture(const std::filesystem::path& package) {
    return package.extension() == ".app"
               ? RowPicture(QLatin1String("icApp"), RowPicture::Better::ofApplication, package.native())
               : filePicture(files::NodeKind::directory);
}

}  // namespace

TChViewController::TChViewController(const Dependencies& dependencies)
    : FileListController(Section::caches, dependencies) {
    awake(QCoreApplication::translate("Section", "Caches"));
}

std::filesystem::path TChViewController::getPathByItem(const engine::FFItem& item) const {
    return dependencies().util.getFullCachePathToItem(item);
}

QString TChViewController::getDisplayText(const QString& text) {
    const QLatin1String prefix("com.");
    return text.size() > prefix.size() && text.startsWith(prefix) ? text.mid(prefix.size()) : text;
}

TLogsViewController::TLogsViewController(const Dependencies& dependencies)
    : FileListController(Section::logs, dependencies) {
    awake(QCoreApplication::translate("Section", "Logs"));
}

std::filesystem::path TLogsViewController::getPathByItem(const engine::FFItem& item) const {
    return item.pfpath().empty() ? item.pfname() : item.pfpath();
}

std::filesystem::path TLogsViewController::fullPathOf(const engine::FFItem& item) const {
    return UtilMod::getFullLogsPathToItem(item);
}

TDwnViewController::TDwnViewController(const Dependencies& dependencies)
    : FileListController(Section::downloads, dependencies) {
    awake(QCoreApplication::translate("Section", "Downloads"));
}

std::filesystem::path TDwnViewController::getPathByItem(const engine::FFItem& item) const {
    return dependencies().util.getFullDownloadPathToItem(item);
}

TTrViewController::TTrViewController(const Dependencies& dependencies)
    : FileListController(Section::trash, dependencies) {
    awake(QCoreApplication::translate("Section", "Trash"));
}

std::filesystem::path TTrViewController::getPathByItem(const engine::FFItem& item) const {
    return dependencies().util.getFullTrashPathToItem(item);
}

TAppsViewController::TAppsViewController(const Dependencies& dependencies)
    : ItemListController(Section::languageResources, dependencies) {
    awake(QCoreApplication::translate("Section", "Language Resources"));
}

ItemListModel::Texts TAppsViewController::texts() const {
    return {[](const engine::CleanableItem& item) { return application(item).displayName(); },
            [](const engine::CleanableItem& /*item*/) { return QString(); },
            [](const engine::CleanableItem& item) { return packagePicture(application(item).pAppName()); },
            [](const auto& item) { return static_cast<quint32>(application(item).cleanableLocsCount()); }, true};
}

std::filesystem::path TAppsViewController::pathOf(const engine::CleanableItem& item) const {
    return application(item).pAppName();
}

std::shared_ptr<engine::AppItemData> TAppsViewController::getSelectedApp() const {
    return std::static_pointer_cast<engine::AppItemData>(selectedItem());
}

std::unique_ptr<ItemListController> makeListController(Section section,
                                                       const ItemListController::Dependencies& dependencies) {
    switch (section) {
        case Section::caches:
            return std::make_unique<TChViewController>(dependencies);
        case Section::logs:
            return std::make_unique<TLogsViewController>(dependencies);
        case Section::downloads:
            return std::make_unique<TDwnViewController>(dependencies);
        case Section::trash:
            return std::make_unique<TTrViewController>(dependencies);
        case Section::languageResources:
            return std::make_unique<TAppsViewController>(dependencies);
    }
    return nullptr;
}

}  // namespace brimvault::ui
