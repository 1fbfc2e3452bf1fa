#include "platform/QuorvelFallManager.h"

#include <QFile>
#include <QLibrary>

namespace brimvault::platform {

// Only an absolute path: the loader would search its own folders for a bare name.
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
