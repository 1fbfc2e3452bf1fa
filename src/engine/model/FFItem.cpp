#include "engine/model/FFItem.h"

#include <algorithm>
#include <string_view>

#include "platform/text/DisplayText.h"

namespace brimvault::engine {

std::shared_ptr<FFItem> FFItem::initWithName(const std::filesystem::path& name, quint64 nsz) {
    auto item = std::make_shared<FFItem>();
    item->setName(name.native());
    item->pfSize_ = nsz;
    item->frees_ = nsz;
    (void)item->nameKey();  // made here, not on the main thread
    return item;
}

std::shared_ptr<FFItem> FFItem::initWithPath(const std::filesystem::path& path, quint64 nsz) {
    auto item = initWithName(path.has_filename() ? path.filename() : path.parent_path().filename(), nsz);
    item->setPfpath(path);
    return item;
}

void FFItem::setSpace(files::ReclaimableSpace space) {
    frees_ = space.bytes;
    if (!space.shared.empty()) {
        extras().sharedFiles = std::move(space.shared);
    }
}

void FFItem::setPfname(const std::filesystem::path& name) {
    if (hasPath() && foundPathKind_ == FoundPathKind::folder) {
        auto whole = *foundIn_;
        whole.path = pathBytes();
        foundIn_ = std::make_shared<const FoundIn>(std::move(whole));
        foundPathKind_ = FoundPathKind::wholePath;
    }
    setName(name.native());
    nameChanged();
}

void FFItem::setName(const std::string& bytes) {
    pfname_ = std::make_unique<char[]>(bytes.size() + 1);
    bytes.copy(pfname_.get(), bytes.size());
}

void FFItem::setPfpath(const std::filesystem::path& path) {
    // A cache of one: items are found folder by folder.
    thread_local std::shared_ptr<const FoundIn> lastHolder;
    const std::string_view bytes = path.native();
    const std::string_view name = nameBytes();
    const auto before = bytes.size() - std::min(name.size(), bytes.size());
    const bool endsWithName = !name.empty() && before > 0 && bytes[before - 1] == '/' && bytes.ends_with(name);
    const auto holder = endsWithName ? bytes.substr(0, before) : bytes;
    foundPathKind_ = endsWithName ? FoundPathKind::folder : FoundPathKind::wholePath;
    if (holder.empty()) {
        foundIn_ = nullptr;
        return;
    }
    if (lastHolder == nullptr || lastHolder->path != holder) {
        lastHolder = std::make_shared<const FoundIn>(FoundIn{std::string(holder)});
    }
    foundIn_ = lastHolder;
}

std::string FFItem::pathBytes() const {
    if (!hasPath()) {
        return {};
    }
    return foundPathKind_ == FoundPathKind::folder ? foundIn_->path + nameBytes() : foundIn_->path;
}

const ItemDetails& FFItem::details() const {
    static const ItemDetails none;
    return extras_ == nullptr ? none : extras_->details;
}

QString FFItem::noteText() const {
    const QString argument = platform::displayText(details().noteArgument.toStdString());
    return note_ == ItemNote::inUse && details().isUnfinished ? textOfDownloadUnderWay(argument)
                                                              : textOf(note_, argument);
}

std::vector<std::filesystem::path> FFItem::removalPaths() const {
    std::vector<std::filesystem::path> paths;
    for (const auto& target : details().targets) {
        for (const auto& name : target.names) {
            paths.push_back(std::filesystem::path(target.folder == nullptr ? "" : target.folder->path) / name);
        }
    }
    if (!hasTargets() && hasPath()) {
        paths.push_back(pfpath());
    }
    return paths;
}

std::filesystem::path FFItem::location() const {
    return foundIn_ != nullptr && foundPathKind_ == FoundPathKind::sectionFolder ? foundIn_->path + nameBytes()
                                                                                 : pathBytes();
}

QString FFItem::ppdisplayName() const { return platform::displayText(pfname()); }

QString FFItem::ppdisplayKeyName() const { return platform::displayText(pfname().stem()); }

}  // namespace brimvault::engine
