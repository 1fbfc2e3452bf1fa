#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::engine {

namespace {

class WithoutPrivileges final : public PrivilegedRemover {
public:
    bool removeFileAtPath(const std::filesystem::path& /*path*/) override { return false; }
};

}  // namespace

PrivilegedRemover& PrivilegedRemover::none() {
    static WithoutPrivileges remover;
    return remover;
}

}  // namespace brimvault::engine
