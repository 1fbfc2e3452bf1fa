#pragma once

#include "engine/operations/CBaseOperation2.h"
#include "platform/LibraryURLs.h"

namespace brimvault::engine {

/// Cleans what is ticked of the user's caches folder and of containers. Queued once; works on the clean queue's thread.
class CChOperation final : public CBaseOperation2 {
public:
    CChOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::caches, items, remover) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedCachesFolder()); }
};

}  // namespace brimvault::engine
