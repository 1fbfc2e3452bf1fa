#pragma once

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>

#include "trial/SampleHome.h"

namespace brimvault::tests {

using namespace trial;

/// Calls with the file being, in turn, each of what keeps a careless reader waiting or fills its memory, and removes
/// it at the end. What it is told is the name of the kind.
inline void forEachHostileKind(const std::filesystem::path& file, const std::function<void(const std::string&)>& call) {
    namespace fs = std::filesystem;
    const std::pair<const char*, std::function<void()>> kinds[] = {
        {"pipe",
         [&] {
             if (::mkfifo(file.c_str(), 0600) != 0) {
                 throw std::system_error(errno, std::generic_category(), file);
             }
         }},
        {"endless device",
         [&] {
             // Root, who could replace the machine's own, gets a device of the test.
             if (::mknod(file.c_str(), S_IFCHR | 0600, makedev(1, 5)) != 0) {
                 fs::create_symlink("/dev/zero", file);
             }
         }},
        {"huge file", [&] { writeSparseFile(file, 6'000'000'000); }},
        {"folder", [&] { fs::create_directory(file); }},
    };
    fs::create_directories(file.parent_path());
    for (const auto& [name, make] : kinds) {
        fs::remove_all(file);
        make();
        call(name);
    }
    fs::remove_all(file);
}

}  // namespace brimvault::tests
