#include "ui/list/TAppsViewController.h"

#include <QCoreApplication>

#include "ui/table/FilePicture.h"

namespace brimvault::ui {

namespace {

const engine::AppItemData& application(const engine::CleanableItem& item) {
    return static_cast<const engine::AppItemData&>(item);
}

// Other packages, plug-ins and the like, look like folders.
RowPicture packagePicture(const std::filesystem::path& package) {
    return package.extension() == ".app"
               ? RowPicture(QLatin1String("icApp"), RowPicture::Better::ofApplication, package.native())
               : filePicture(files::NodeKind::directory);
}

}  // namespace

TAppsViewController::TAppsViewController(const Surroundings& surroundings)
    : ItemListController(engine::Section::languageResources, surroundings) {
    awake(QCoreApplication::translate("Section", "Language Resources"));
}

ItemListModel::Texts TAppsViewController::texts() const {
    return {[](const engine::CleanableItem& item) { return application(item).displayName(); },
            [](const engine::CleanableItem& /*item*/) { return QString(); },
            [](const engine::CleanableItem& item) { return packagePicture(application(item).pAppName()); },
            [](const engine::CleanableItem& item) { return application(item).cleanableLocsCount(); }, true};
}

std::filesystem::path TAppsViewController::pathOf(const engine::CleanableItem& item) const {
    return application(item).pAppName();
}

std::shared_ptr<engine::AppItemData> TAppsViewController::getSelectedApp() const {
    return std::static_pointer_cast<engine::AppItemData>(selectedItem());
}

}  // namespace brimvault::ui
