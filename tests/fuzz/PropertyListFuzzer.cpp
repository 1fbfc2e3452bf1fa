// Any property list file is parsed or refused, with at most 32 MiB of memory.

#include <sanitizer/allocator_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/formats/PropertyList.h"

namespace {

using brimvault::platform::PropertyList;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

constexpr std::size_t maxMemory = 32UL * 1024 * 1024;
std::size_t memoryAtStart = 0;  ///< 0 while nothing is being read

void checkMemory(const volatile void* /*memory*/, std::size_t /*size*/) {
    if (memoryAtStart != 0 && __sanitizer_get_current_allocated_bytes() > memoryAtStart + maxMemory) {
        memoryAtStart = 0;  // the report allocates, too
        std::abort();
    }
}

void ask(const PropertyList& list) {
    for (const char* key : {"AppleShowAllFiles", "CFBundleIdentifier", "k", ""}) {
        const auto text = list.text(key);
        const auto yes = list.boolean(key);
        require(!text || yes);  // every string reads as a boolean
        require(list.text(key) == text && list.boolean(key) == yes);
    }
    require(!list.text("no such key") || list.boolean("no such key"));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    require(__sanitizer_install_malloc_and_free_hooks(checkMemory, [](const volatile void* /*memory*/) {}) != 0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int memory = ::memfd_create("list", MFD_CLOEXEC);
    static const std::filesystem::path file = "/proc/self/fd/" + std::to_string(memory);
    require(::ftruncate(memory, 0) == 0 && ::pwrite(memory, data, size, 0) == static_cast<ssize_t>(size));
    memoryAtStart = __sanitizer_get_current_allocated_bytes();
    if (const auto list = PropertyList::read(file)) {
        ask(*list);
    }
    memoryAtStart = 0;
    return 0;
}
