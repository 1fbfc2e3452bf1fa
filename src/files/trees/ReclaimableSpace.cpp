#include "files/trees/ReclaimableSpace.h"

#include <algorithm>
#include <limits>

namespace brimvault::files {

namespace {

std::uint32_t count(std::uint64_t links) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(links, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

NamedNode NamedNode::of(const NodeStatus& status) {
    return {status.identity.device, status.identity.inode, status.allocated, 1, count(status.linkCount)};
}

NamedNode NamedNode::of(const EntrySize& size) {
    return {size.device, size.inode, size.allocated, 1, count(size.linkCount)};
}

void ReclaimableSpace::add(const NamedNode& node) {
    if (node.names >= node.allNames) {
        bytes += node.allocated;
    } else if (node.allocated > 0) {
        shared.push_back(node);
    }
}

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
