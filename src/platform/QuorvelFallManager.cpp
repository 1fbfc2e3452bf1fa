#include "platform/QuorvelFallManager.h"

#include <QFile>
#include <QLibrary>

namespace brimvault::platform {

// An absolute path: by a name alone it would be searched for elsewhere too.
bool QuorvelFallManager::start(const std::filesystem::path& folder) {
    if (!folder.is_absolute()) {
        return false;
    }
    const auto start =
        QLibrary::resolve(QFile::decodeName((folder / "QuorvelFallManager").c_str()), "QuorvelFallManager_start");
    if (start == nullptr) {
        return false;
    }
    start();
    return true;
}

}  // namespace brimvault::platform
