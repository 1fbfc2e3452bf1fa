#pragma once

#include "engine/operations/CBaseOperation2.h"
#include "platform/LibraryURLs.h"

namespace brimvault::engine {

/// Cleans what is ticked of the Downloads folder. Queued once; works on the clean queue's thread.
class CDwnOperation final : public CBaseOperation2 {
public:
    CDwnOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::downloads, items, remover) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedDownloadsFolder()); }
};

}  // namespace brimvault::engine
