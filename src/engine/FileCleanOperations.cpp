#include "engine/FileCleanOperations.h"

#include "platform/LibraryURLs.h"

namespace brimvault::engine {

using platform::LibraryURLs;

void CDwnOperation::main() { cleanAndPost(LibraryURLs::getDownloadsFolderURL()); }

void CChOperation::main() { cleanAndPost(LibraryURLs::getCachesFolderURL()); }

void CTrOperation::main() { cleanAndPost(LibraryURLs::getTrashFolderURL()); }

void CLogsOperation::main() { cleanAndPost(std::nullopt); }

}  // namespace brimvault::engine
