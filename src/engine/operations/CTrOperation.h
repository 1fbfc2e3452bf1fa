#pragma once

#include "engine/operations/CBaseOperation2.h"
#include "platform/LibraryURLs.h"

namespace brimvault::engine {

/// Cleans what is ticked of the Trash. Queued once; works on the clean queue's thread.
class CTrOperation final : public CBaseOperation2 {
public:
    CTrOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::trash, items, remover) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedTrashFolder()); }
};

}  // namespace brimvault::engine
