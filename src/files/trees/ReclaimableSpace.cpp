#include "files/trees/ReclaimableSpace.h"

#include <algorithm>

namespace brimvault::files {

void ReclaimableSpace::add(const ReclaimableSpace& more) {
    bytes += more.bytes;
    shared.insert(shared.end(), more.shared.begin(), more.shared.end());
}

void ReclaimableSpace::settle() {
    std::vector<NamedNode> seen;
    seen.swap(shared);
    std::sort(seen.begin(), seen.end(), [](const auto& one, const auto& other) { return one.isBefore(other); });
    for (auto next = seen.begin(); next != seen.end();) {
        auto node = *next++;
        for (; next != seen.end() && next->isSameAs(node); ++next) {
            node.names += next->names;
        }
        add(node);
    }
    shared.shrink_to_fit();
}

}  // namespace brimvault::files
