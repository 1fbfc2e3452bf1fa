#include "files/trees/SizeCalculation.h"

#include <cstdlib>
#include <new>
#include <system_error>

#include "files/trees/Measure.h"

namespace brimvault::files {

SizeCalculation& SizeCalculation::sharedInstance() {
    static SizeCalculation instance;
    return instance;
}

std::uint64_t SizeCalculation::getFolderSize(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!DirectoryHandle::openForReading(std::filesystem::absolute(path, ignored).lexically_normal())) {
        return 0;
    }
    try {
        runningTotal_ += measureContents(path).regularFiles;
    } catch (const std::bad_alloc&) {
        std::exit(1);  // as it is defined: there is no answer that would tell of it
    }
    return runningTotal_;
}

std::uint64_t SizeCalculation::fastFolderSizeOfItemWithPath(const std::filesystem::path& path) const {
    return measureContents(path).allocated;
}

std::uint64_t SizeCalculation::sizeForFolderAtPath(const std::filesystem::path& path, Failure* /*error*/) const {
    return fastFolderSizeOfItemWithPath(path);
}

}  // namespace brimvault::files
