#include "engine/removal/ItemTrash.h"

#include <QCoreApplication>
#include <cerrno>

#include "engine/removal/ItemRemoval.h"
#include "engine/removal/TrashOfVolume.h"
#include "files/Result.h"

namespace brimvault::engine {

namespace {

/// One of the things that an item stands for.
struct Part {
    std::filesystem::path path;
    std::shared_ptr<const FoundIn> foundIn;
    ExpectedNode expected;
};

std::vector<Part> partsOf(const FFItem& item, const std::filesystem::path& path) {
    std::vector<Part> parts;
    for (const auto& target : item.details().targets) {
        for (std::size_t number = 0; number < target.names.size(); ++number) {
            const auto& name = target.names[number];
            parts.push_back({std::filesystem::path(target.folder == nullptr ? "" : target.folder->path) / name,
                             target.folder, target.expectedOf(number)});
        }
    }
    if (!item.hasTargets()) {
        parts.push_back({path, item.foundIn(), {item.identity()}});
    }
    return parts;
}

QString systemText(int code) { return QString::fromLocal8Bit(files::Failure{code, {}}.text().c_str()); }

QString textOf(int code) {
    switch (code) {
        case EEXIST:
            return QCoreApplication::translate("Trash",
                                               "Something else has its name by now, so that it stays in the "
                                               "Trash");
        case ENOENT:
        case ESTALE:
            return QCoreApplication::translate("Trash", "It is not in the Trash any more");
        default:
            return systemText(code);
    }
}

// Empty if it was moved, and added to `moved`, or if it is gone.
QString move(const Part& part, ItemRemover& remover, std::vector<TrashedFile>& moved) {
    const auto name = part.path.filename();
    if (!isOneName(name)) {
        return ItemRemoval::withoutSystemText();
    }
    const auto reached = remover.reach(part.path, part.foundIn, part.expected);
    if (reached.folder == nullptr) {
        return reached.refusal;
    }
    const auto trash = TrashOfVolume::open(*reached.folder, part.path.parent_path());
    if (!trash) {
        return QCoreApplication::translate("Trash", "There is no trash folder for it: %1")
            .arg(systemText(trash.code()));
    }
    const auto& top = trash->top;
    const auto recorded = top.empty() ? part.path : part.path.lexically_relative(top);
    const auto newName =
        files::moveIntoTrash(*reached.folder, name, reached.item.identity, trash->opened, recorded.native());
    if (!newName) {
        return newName.code() == ESTALE ? ItemRemoval::replacedText() : systemText(newName.code());
    }
    moved.push_back({part.path, part.foundIn, trash->folder, *newName, reached.item.identity});
    return {};
}

QString putBack(const TrashedFile& file) {
    const auto trash = TrashOfVolume::openAgain(file.trash);
    const auto folder = files::DirectoryHandle::open(file.original.parent_path());
    if (!trash || !folder) {
        return textOf(trash ? folder.code() : trash.code());
    }
    const auto status = folder->status();
    if (!status || status->identity != file.foundIn->folder) {
        return ItemRemoval::exchangedText();
    }
    const int code = files::moveOutOfTrash(trash->opened, file.name, file.identity, *folder, file.original.filename());
    return code == 0 ? QString() : textOf(code);
}

}  // namespace

TrashMove moveToTrash(const FFItem& item, const std::filesystem::path& path) {
    ItemRemover remover(PrivilegedRemover::none());
    TrashMove move;
    for (const auto& part : partsOf(item, path)) {
        move.reason = engine::move(part, remover, move.files);
        if (!move.reason.isEmpty()) {
            (void)putBack(move.files);
            move.files.clear();
            break;
        }
    }
    if (move.files.empty() && move.reason.isEmpty()) {
        move.reason = systemText(ENOENT);
    }
    return move;
}

QString putBack(const std::vector<TrashedFile>& files) {
    QString first;
    for (const auto& file : files) {
        const QString reason = putBack(file);
        first = first.isEmpty() ? reason : first;
    }
    return first;
}

}  // namespace brimvault::engine
