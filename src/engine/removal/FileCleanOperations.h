#pragma once

#include <functional>
#include <utility>

#include "engine/removal/CBaseOperation2.h"
#include "platform/LibraryURLs.h"

namespace brimvault::engine {

// The clean operations of the four sections of files: each removes what is ticked in its section. Queued once; each
// works on the clean queue's thread.

/// The user's caches folder and the containers' caches.
class CChOperation final : public CBaseOperation2 {
public:
    CChOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::caches, items, remover) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedCachesFolder()); }
};

/// The Downloads folder.
class CDwnOperation final : public CBaseOperation2 {
public:
    CDwnOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::downloads, items, remover) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedDownloadsFolder()); }
};

/// The logs. They lie in several folders, so that every item carries its path.
class CLogsOperation final : public CBaseOperation2 {
public:
    CLogsOperation(const ItemArray& items, PrivilegedRemover& remover)
        : CBaseOperation2(Section::logs, items, remover) {}

protected:
    void main() override { cleanAndPost(std::nullopt); }
};

/// The Trash. Records without an item go silently, from the trashes of which an item went.
class CTrOperation final : public CBaseOperation2 {
public:
    using Now = std::function<TrashCleanup::Clock::time_point()>;
    CTrOperation(const ItemArray& items, PrivilegedRemover& remover, Now now = TrashCleanup::Clock::now)
        : CBaseOperation2(Section::trash, items, remover), now_(std::move(now)) {}

protected:
    void main() override { cleanAndPost(platform::LibraryURLs::namedTrashFolder()); }
    void afterRemoving(const ItemRemover& remover) override { remover.removeOrphans(now_()); }

private:
    const Now now_;
};

}  // namespace brimvault::engine
