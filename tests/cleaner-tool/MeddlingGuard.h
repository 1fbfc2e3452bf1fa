#pragma once

#include <functional>

#include "cleaner-tool/KeptFolders.h"

namespace brimvault::tests {

/// Asks the guard of the root remover and runs a callback before it answers, as a racing thread could: another object
/// may have the name by then.
class MeddlingGuard final : public files::RemovalGuard {
public:
    MeddlingGuard(cleaner::KeptFolders& kept, std::function<void(const files::NodeStatus&)> meddle)
        : guard_(kept), meddle_(std::move(meddle)) {}

    bool onWay(const files::DirectoryHandle& folder, const files::NodeStatus& status) override {
        return guard_.onWay(folder, status);
    }
    bool mayRemove(const files::NodeStatus& node) override {
        const bool answer = guard_.mayRemove(node);
        meddle_(node);
        return answer;
    }

private:
    cleaner::KeptFoldersGuard guard_;
    std::function<void(const files::NodeStatus&)> meddle_;
};

}  // namespace brimvault::tests
