#pragma once

#include "engine/operations/CBaseOperation2.h"

namespace brimvault::engine {

/// Cleans what is ticked of the logs, whose items carry their paths, since they lie in several folders. Queued once;
/// works on the clean queue's thread.
class CLogsOperation final : public CBaseOperation2 {
public:
    CLogsOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::logs, items, remover) {}

protected:
    void main() override { cleanAndPost(std::nullopt); }
};

}  // namespace brimvault::engine
