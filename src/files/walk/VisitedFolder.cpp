#include "files/walk/VisitedFolder.h"

#include <vector>

namespace brimvault::files {

// Letting go of the folder above may destroy it, and so on up to the first: instead of going down into each other, the
// destructors hand what they let go of to the outermost.
VisitedFolder::~VisitedFolder() {
    static thread_local std::shared_ptr<VisitedFolder>* handedOut = nullptr;
    if (handedOut != nullptr) {
        *handedOut = std::move(holder);
        return;
    }
    std::shared_ptr<VisitedFolder> above;
    handedOut = &above;
    auto current = std::move(holder);
    while (current != nullptr) {
        current.reset();
        current = std::move(above);
    }
    handedOut = nullptr;
}

std::filesystem::path VisitedFolder::position() const {
    std::vector<const std::string*> names;
    for (const auto* folder = this; folder != nullptr; folder = folder->holder.get()) {
        names.push_back(&folder->name);
    }
    std::filesystem::path path;
    for (auto part = names.rbegin(); part != names.rend(); ++part) {
        path /= **part;
    }
    return path;
}

}  // namespace brimvault::files
