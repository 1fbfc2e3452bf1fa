#include "ui/FileListController.h"

#include <QMenu>
#include <QPointer>

#include "engine/Notifications.h"
#include "platform/DisplayText.h"
#include "ui/FilePicture.h"

namespace brimvault::ui {

namespace {

const engine::FFItem& file(const engine::CleanableItem& item) { return static_cast<const engine::FFItem&>(item); }

// Folders and links look the same on every desktop.
RowPicture pictureOf(const engine::FFItem& item) {
    const auto kind = item.getDisplayIcon().kind;
    return kind == files::NodeKind::regular
               ? RowPicture(filePicture(kind), RowPicture::Better::ofFileType, item.pfname().native())
               : filePicture(kind);
}

}  // namespace

FileListController::FileListController(engine::Section section, const Surroundings& surroundings)
    : ItemListController(section, surroundings) {}

void FileListController::awake(const QString& accessibleName) {
    ItemListController::awake(accessibleName);
    connect(view(), &TTableView::removeRequested, this, &FileListController::onClickedRemove);
}

QList<ItemListController::Item> FileListController::items() const {
    return notEmpty(surroundings().pDS.itemsOf(section()));
}

ItemListModel::Texts FileListController::texts() const {
    return {[this](const engine::CleanableItem& item) { return nameOf(file(item)); },
            [this](const engine::CleanableItem& item) { return platform::displayText(fullPathOf(file(item))); },
            [](const engine::CleanableItem& item) { return pictureOf(file(item)); },
            {},
            false};
}

std::filesystem::path FileListController::pathOf(const engine::CleanableItem& item) const {
    return getPathByItem(file(item));
}

std::shared_ptr<engine::FFItem> FileListController::getSelectedItem() const {
    return std::static_pointer_cast<engine::FFItem>(selectedItem());
}

quint64 FileListController::getSize2CleanMyItems() const {
    quint64 size = 0;
    engine::DataMan::getsizeAndSelSize(surroundings().pDS.itemsOf(section()), &size, nullptr);
    return size;
}

void FileListController::addActions(QMenu& menu) {
    menu.addSeparator();
    menu.addAction(tr("Remove..."), this, &FileListController::onClickedRemove)->setEnabled(isRemoveEnabled());
}

bool FileListController::isRemoveEnabled() const {
    return hasSelectedItem() && !surroundings().dataSource.sectionControllerIsScanOrRemoveProcessPerforming() &&
           !surroundings().dataSource.isScanReturning() && !surroundings().dataSource.isQuestionOpen();
}

void FileListController::onClickedRemove() {
    if (!isRemoveEnabled()) {
        return;
    }
    const auto item = getSelectedItem();
    const auto path = getPathByItem(*item);
    if (!path.is_absolute()) {
        surroundings().util.alertFileNotExists(path);  // the section's folder is gone
        return;
    }
    const auto going = engine::ItemArray{item} + itemsIn(path);
    {
        const ApplicationController::OpenQuestion question(surroundings().dataSource);
        if (!surroundings().util.isRemovalConfirmed(path, going.size() - 1)) {
            return;
        }
    }
    if (!isRemoveEnabled() || model().rowOf(item.get()) < 0) {
        return;  // while the question was open, the window went on
    }
    surroundings().dataSource.setPbRemoving(true);
    surroundings().util.doRemoveFile(path, [list = QPointer(this), going](bool success) {
        if (list) {
            list->removeFinished(going, success);
        }
    });
}

// What is listed singly and lies in a folder that is listed as well. Scans spell paths in one way, so comparing bytes
// is enough, and quick enough for the longest list.
engine::ItemArray FileListController::itemsIn(const std::filesystem::path& folder) const {
    engine::ItemArray inside;
    const auto beginning = folder.native() + "/";
    for (const auto& item : model().items()) {
        if (file(*item).pfpath().native().starts_with(beginning)) {
            inside.append(std::static_pointer_cast<engine::FFItem>(item));
        }
    }
    return inside;
}

void FileListController::removeFinished(const engine::ItemArray& items, bool success) {
    surroundings().dataSource.setPbRemoving(false);
    if (success) {
        const auto words = engine::vocabulary(section());
        engine::NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items}});
    }
}

}  // namespace brimvault::ui
