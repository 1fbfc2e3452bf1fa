#include "ui/list/FileListController.h"

#include <QMenu>
#include <QPointer>
#include <algorithm>
#include <iterator>

#include "engine/model/PlaceTexts.h"
#include "engine/model/TrashTexts.h"
#include "engine/notification/Notifications.h"
#include "platform/text/DisplayText.h"
#include "ui/table/RowPicture.h"

namespace brimvault::ui {

namespace {

const engine::FFItem& file(const engine::CleanableItem& item) { return static_cast<const engine::FFItem&>(item); }

// Folders and links have the window's own pictures, unless they are those of an application.
RowPicture pictureOf(const engine::FFItem& item) {
    const auto kind = item.getDisplayIcon().kind;
    if (const auto& application = item.details().application; !application.isEmpty()) {
        return {filePicture(files::NodeKind::directory), RowPicture::Better::ofDesktopEntry, application.toStdString()};
    }
    return kind == files::NodeKind::regular
               ? RowPicture(filePicture(kind), RowPicture::Better::ofFileType, item.pfname().native())
               : filePicture(kind);
}

// Whether it holds for all paths that a removal of the item acts on.
template <typename Predicate>
bool allOf(const engine::FFItem& item, Predicate holds) {
    if (!item.hasTargets()) {
        return holds(item.pathBytes());
    }
    const auto paths = item.removalPaths();
    return std::all_of(paths.begin(), paths.end(), [&](const auto& path) { return holds(path.native()); });
}

}  // namespace

FileListController::FileListController(engine::Section section, const Dependencies& dependencies)
    : ItemListController(section, dependencies) {}

void FileListController::viewDidLoad() {
    connect(view(), &TTableView::removeRequested, this, &FileListController::onClickedRemove);
    connect(view(), &TTableView::trashRequested, this, &FileListController::onClickedMoveToTrash);
}

// Called for every batch of a scan and after each clean. Items that stay are not looked at, so that the cost depends on
// the size of the change and not on that of the list. A new generation of the section's items means that some were
// removed or all were replaced; within a generation, items are only appended.
int FileListController::updateRows(int row) {
    const auto& found = dependencies().pDS.sectionItems(section());
    const auto generation = found.generation();
    int place = row;
    if (generation == generation_ + 1 && !found.removed().isEmpty() && found.removed().size() < found.items().size()) {
        QList<const engine::CleanableItem*> gone;
        for (const auto& item : found.removed()) {
            gone.append(item.get());
        }
        place = model().removeItems(gone, row);
    } else if (generation != generation_) {
        place = model().setItems(notEmpty(found.items()), row);
    } else {
        model().appendItems(notEmpty(found.items(), takenCount_));
    }
    generation_ = generation;
    takenCount_ = found.items().size();
    model().resortByMarks();
    return place;
}

ItemListModel::Texts FileListController::texts() const {
    return {[this](const engine::CleanableItem& item) { return nameOf(file(item)); },
            [this](const engine::CleanableItem& item) { return tooltipOf(file(item)); },
            [](const engine::CleanableItem& item) { return pictureOf(file(item)); },
            {},
            false,
            [](const engine::CleanableItem& item) { return file(item).noteText(); }};
}

QString FileListController::tooltipOf(const engine::FFItem& item) const {
    QStringList lines = item.hasTargets() ? QStringList(engine::placeTexts::ofTargets(item))
                                          : QStringList{platform::displayText(fullPathOf(item))};
    if (const auto& trashed = item.details().trashed) {
        lines += engine::trashTexts::lines(*trashed);
    }
    return lines.join(QLatin1Char('\n'));
}

std::filesystem::path FileListController::pathOf(const engine::CleanableItem& item) const {
    return getPathByItem(file(item));
}

std::shared_ptr<engine::FFItem> FileListController::getSelectedItem() const {
    return std::static_pointer_cast<engine::FFItem>(selectedItem());
}

void FileListController::addActions(QMenu& menu) {
    menu.addSeparator();
    if (isMovedToTrash()) {
        menu.addAction(tr("Move to Trash"), this, &FileListController::onClickedMoveToTrash)
            ->setEnabled(isMoveToTrashEnabled());
    }
    menu.addAction(tr("Remove..."), this, &FileListController::onClickedRemove)->setEnabled(isRemoveEnabled());
}

bool FileListController::isIdle() const {
    const auto& application = dependencies().dataSource;
    return application.activity() == Activity::idle && !application.isScanReturning();
}

bool FileListController::isRemoveEnabled() const {
    return hasSelectedItem() && getSelectedItem()->ppbDeletable() && isIdle();
}

bool FileListController::isUndoMoveEnabled() const {
    return isMovedToTrash() && isIdle() && dependencies().util.trashMoves().isUndoable();
}

// Not asked about, as it can be undone.
void FileListController::onClickedMoveToTrash() {
    if (!isMoveToTrashEnabled()) {
        return;
    }
    const auto item = getSelectedItem();
    dependencies().dataSource.setPbRemoving(true);
    const auto finished = [list = QPointer(this), item](bool success) {
        if (list && success) {
            list->removed({item}, Names::inTrash);
        }
    };
    dependencies().util.trashMoves().move(item, getPathByItem(*item), finished);
}

void FileListController::onClickedUndoMove() {
    if (!isUndoMoveEnabled()) {
        return;
    }
    dependencies().dataSource.setPbRemoving(true);
    dependencies().util.trashMoves().undo([list = QPointer(this)](const auto& item) {
        if (list) {
            list->restored(item);
        }
    });
}

void FileListController::onClickedRemove() {
    if (!isRemoveEnabled()) {
        return;
    }
    const auto item = getSelectedItem();
    const auto path = getPathByItem(*item);
    if (!item->hasTargets() && !path.is_absolute()) {
        dependencies().util.alertFileNotExists(path);  // the section's folder no longer exists
        return;
    }
    const auto going = engine::ItemArray{item} + itemsGoingWith(*item, path);
    {
        const ApplicationController::OpenQuestion question(dependencies().dataSource);
        if (!dependencies().util.isRemovalConfirmed(*item, path, going.sliced(1))) {
            return;
        }
    }
    if (!isRemoveEnabled() || model().rowOf(item.get()) < 0) {
        return;  // the window kept running while the question was open
    }
    dependencies().dataSource.setPbRemoving(true);
    const auto finished = [list = QPointer(this), going](bool success) {
        if (list && success) {
            list->removed(going, Names::gone);
        }
    };
    dependencies().util.doRemoveItem(item, path, finished, section());
}

// The items of which all lies in what is removed with the item: they go with it. Scans write paths in one way, so that
// comparing bytes is enough, and fast enough for the longest list.
engine::ItemArray FileListController::itemsGoingWith(const engine::FFItem& item,
                                                     const std::filesystem::path& path) const {
    const auto removed = item.hasTargets() ? item.removalPaths() : std::vector{path};
    std::vector<std::string> beginnings;
    std::transform(removed.begin(), removed.end(), std::back_inserter(beginnings),
                   [](const auto& folder) { return folder.native() + "/"; });
    const auto goes = [&](const std::string& inside) {
        return std::any_of(beginnings.begin(), beginnings.end(),
                           [&](const auto& beginning) { return inside.starts_with(beginning); });
    };
    engine::ItemArray going;
    for (int row = 0; row < model().rowCount(); ++row) {
        const auto& other = model().item(row);
        if (&item != other.get() && allOf(file(*other), goes)) {
            going.append(std::static_pointer_cast<engine::FFItem>(other));
        }
    }
    return going;
}

// Posts the section's "cleanFinished", which otherwise only the engine posts after a clean, so that a single removal
// goes the same way: the model drops the items and everything that shows them follows.
void FileListController::removed(const engine::ItemArray& items, Names names) {
    const auto words = engine::vocabulary(section());
    const auto moved = engine::Number{names == Names::inTrash ? 1 : 0};
    engine::NotificationCenter::defaultCenter().post(words.cleanFinished,
                                                     {{words.arrayKey, items}, {engine::key::movedToTrash, moved}});
}

// Comes as what a scan has found in addition.
void FileListController::restored(const std::shared_ptr<engine::FFItem>& item) {
    const auto words = engine::vocabulary(section());
    engine::NotificationCenter::defaultCenter().post(words.scanProgress, {{words.deltaKey, engine::ItemArray{item}}});
}

}  // namespace brimvault::ui
