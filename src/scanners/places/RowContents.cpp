#include "scanners/places/RowContents.h"

#include <algorithm>

namespace brimvault::scanners {

namespace {

bool isKeptBy(const PlaceRule& rule, std::string_view name) {
    return std::any_of(rule.keep.begin(), rule.keep.end(), [name](const char* kept) { return name == kept; });
}

}  // namespace

RowContents::RowContents(const PlaceRow& row, const Scan& scan)
    : row_(row), scan_(scan), judgement_{row.rule, row.answer, row.note} {
    if (row.folders.empty()) {
        measurePath();
    }
    for (const auto& folder : row.folders) {
        measureFolder(folder);
    }
    found_.space.settle();
}

bool RowContents::isNothing() const {
    return judgement_.answer == PlaceAnswer::spared || (!row_.folders.empty() && targets_.empty());
}

void RowContents::measurePath() {
    const auto folder = files::DirectoryHandle::open(row_.path.parent_path());
    const auto holder = folder ? folder->status() : files::Result<files::NodeStatus>::failed(folder.code());
    if (!holder) {
        judgement_.answer = PlaceAnswer::spared;
        return;
    }
    const auto name = row_.path.filename();
    const files::DirectoryEntry entry{name.c_str(), files::NodeKind::directory};
    const auto found = files::inspectEntry(*folder, entry, {holder->mount, scan_.open}, scan_.stop);
    const auto judged = judge(std::span(&row_.rule, 1), found, std::chrono::system_clock::now());
    judgement_.answer = std::max(judgement_.answer, judged.answer);
    add(found, judged.note);
}

void RowContents::measureFolder(const PlaceFolder& folder) {
    const auto handle = files::DirectoryHandle::openForReading(folder.path);
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    if (!status || status->place() != folder.place || (folder.rule->evidence.tagged && !isTaggedAsCache(*handle))) {
        return;
    }
    if (folder.rule->shape != PlaceShape::cache) {
        measureChildren(folder, *handle);
        return;
    }
    const auto isKept = [&](std::string_view name) { return isKeptBy(*folder.rule, name); };
    scan_.names.forEachEntry(*handle, folder.path, scan_.open, scan_.stop, isKept, [&](const CacheNames::Entry& entry) {
        addTarget({entry.folder, entry.folderPath}, entry.name, entry.found, entry.judgement);
    });
}

void RowContents::measureChildren(const PlaceFolder& folder, const files::DirectoryHandle& handle) {
    const auto now = std::chrono::system_clock::now();
    const bool isCopy = files::isWorkingCopy(handle);
    const auto sizes = [&](const char* name) {
        return isKeptBy(*folder.rule, name) ? files::Sizes::unwanted : files::Sizes::wanted;
    };
    const auto call = [&](const files::MeasurableEntry& entry) {
        if (entry.sizes == files::Sizes::wanted) {
            auto found = entry.findings();
            found.holdsWorkingCopy = found.holdsWorkingCopy || isCopy;
            const auto judged = judge(std::span(&folder.rule, 1), found, now);
            if (holdsEvidence(*folder.rule, found, now) && judged.answer != PlaceAnswer::spared) {
                addTarget({handle, folder.path}, entry.name, found, judged);
            }
        }
        return true;
    };
    (void)files::forEachMeasurable(handle, files::HiddenEntries::include, scan_.stop, sizes, call, &scan_.open);
}

void RowContents::addTarget(const OpenedFolder& in, const char* name, const files::ItemFindings& found,
                            const Judgement& judged) {
    const bool isUnticked = judged.answer == PlaceAnswer::unticked && judged.note != engine::ItemNote::inUse;
    if (row_.answer == PlaceAnswer::ticked && isUnticked) {
        return;
    }
    if (targets_.empty() || targets_.back().folder->path != (in.path / "").native()) {
        targets_.push_back({engine::FoundIn::in(in.path, in.handle, row_.root), {}});
    }
    targets_.back().names.emplace_back(name);
    add(found, judged.note);
}

void RowContents::add(const files::ItemFindings& more, engine::ItemNote note) {
    found_.logical += more.logical;
    found_.space.add(more.space);
    found_.openBy = found_.openBy != 0 ? found_.openBy : more.openBy;
    found_.isForeign = found_.isForeign || more.isForeign;
    found_.holdsUnseen = found_.holdsUnseen || more.holdsUnseen;
    judgement_.note = moreSerious(judgement_.note, note);
    if (judgement_.note != engine::ItemNote::none) {
        judgement_.answer = PlaceAnswer::unticked;
    }
}

}  // namespace brimvault::scanners
