#include "engine/model/FoundIn.h"

namespace brimvault::engine {

namespace {

std::shared_ptr<const FoundIn> made(std::string path, const files::DirectoryHandle& folder,
                                    const std::shared_ptr<const platform::RootPlace>& root) {
    FoundIn place{std::move(path), {}, root};
    if (const auto status = folder.status()) {
        place.folder = status->identity;
    }
    return std::make_shared<const FoundIn>(std::move(place));
}

}  // namespace

std::shared_ptr<const FoundIn> FoundIn::in(const std::filesystem::path& path, const files::DirectoryHandle& folder,
                                           const std::shared_ptr<const platform::RootPlace>& root) {
    return made((path / "").native(), folder, root);
}

std::shared_ptr<const FoundIn> FoundIn::at(const std::filesystem::path& item, const files::DirectoryHandle& folder,
                                           const std::shared_ptr<const platform::RootPlace>& root) {
    return made(item.native(), folder, root);
}

}  // namespace brimvault::engine
