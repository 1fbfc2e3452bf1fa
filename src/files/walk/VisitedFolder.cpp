#include "files/walk/VisitedFolder.h"

#include <vector>

namespace brimvault::files {

// Destroys the parent chain iteratively: nested destructors would overflow the stack on deep trees.
VisitedFolder::~VisitedFolder() {
    static thread_local std::shared_ptr<VisitedFolder>* released = nullptr;
    if (released != nullptr) {
        *released = std::move(holder);
        return;
    }
    std::shared_ptr<VisitedFolder> above;
    released = &above;
    auto current = std::move(holder);
    while (current != nullptr) {
        current.reset();
        current = std::move(above);
    }
    released = nullptr;
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
