#include "engine/removal/ItemTrash.h"

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <optional>

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

QString withoutTrashText(int code) {
    return QCoreApplication::translate("Trash", "There is no trash folder for it: %1").arg(systemText(code));
}

QString withoutFolderText(int code) {
    return code == ENOENT || code == ENOTDIR
               ? QCoreApplication::translate("Trash", "The folder that held it is not there any more")
               : systemText(code);
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
        return withoutTrashText(trash.code());
    }
    const auto& top = trash->top;
    const auto recorded = top.empty() ? part.path : part.path.lexically_relative(top);
    const auto newName =
        files::moveIntoTrash(*reached.folder, name, reached.item.identity, trash->opened, recorded.native());
    if (!newName) {
        return newName.code() == ESTALE ? ItemRemoval::replacedText() : systemText(newName.code());
    }
    moved.push_back({part.path, part.foundIn, trash->folder, *newName, reached.item.identity, reached.item.size});
    return {};
}

/// Why a file is not back.
struct Refusal {
    QString reason;
    bool isLost = false;  ///< it is not in the Trash any more
};

std::optional<Refusal> putBack(const TrashedFile& file) {
    const Refusal lost{QCoreApplication::translate("Trash", "It is not in the Trash any more"), true};
    const auto trash = TrashOfVolume::openAgain(file.trash);
    if (!trash) {  // out of reach with its disk, perhaps
        return Refusal{withoutTrashText(trash.code())};
    }
    const auto item = files::statusAt(trash->opened.items.descriptor(), file.name.c_str());
    if (item.code() == ENOENT || (item && item->identity != file.identity)) {
        return lost;
    }
    const auto folder = files::DirectoryHandle::open(file.original.parent_path());
    const auto status = folder ? folder->status() : files::Result<files::NodeStatus>::failed(folder.code());
    if (!status || status->identity != file.foundIn->folder) {
        return Refusal{status ? ItemRemoval::exchangedText() : withoutFolderText(status.code())};
    }
    switch (const int code =
                files::moveOutOfTrash(trash->opened, file.name, file.identity, *folder, file.original.filename())) {
        case 0:
            return std::nullopt;
        case EEXIST:
            return Refusal{QCoreApplication::translate(
                "Trash", "Something else has its name by now, so that it stays in the Trash")};
        case ESTALE:
            return lost;
        default:
            return Refusal{systemText(code)};
    }
}

// What belongs to a row is small files; the rest of its size is the row's own.
void shareOut(std::uint64_t bytes, std::vector<TrashedFile>& files) {
    if (!files.empty()) {
        for (std::size_t number = 1; number < files.size(); ++number) {
            bytes -= std::min(bytes, files[number].bytes);
        }
        files.front().bytes = bytes;
    }
}

}  // namespace

TrashMove moveToTrash(const FFItem& item, const std::filesystem::path& path) {
    ItemRemover remover(PrivilegedRemover::none());
    TrashMove move;
    const auto parts = partsOf(item, path);
    for (auto part = parts.begin(); part != parts.end() && move.reason.isEmpty(); ++part) {
        move.reason = engine::move(*part, remover, move.files);
    }
    shareOut(item.pfSize(), move.files);
    if (!move.reason.isEmpty()) {
        move.files = putBack(move.files).left;
    } else if (move.files.empty()) {
        move.reason = systemText(ENOENT);
    }
    return move;
}

TrashReturn putBack(const std::vector<TrashedFile>& files) {
    TrashReturn result;
    for (const auto& file : files) {
        const auto refusal = putBack(file);
        if (!refusal) {
            result.back.push_back(file);
            continue;
        }
        result.reason = result.reason.isEmpty() ? refusal->reason : result.reason;
        if (!refusal->isLost) {
            result.left.push_back(file);
        }
    }
    return result;
}

}  // namespace brimvault::engine
