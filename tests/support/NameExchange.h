#pragma once

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "trial/SampleHome.h"

namespace brimvault::tests {

using namespace trial;

/// Exchanges two names with each other. False where one is missing, or the file system exchanges no names.
inline bool exchangeNames(const std::filesystem::path& one, const std::filesystem::path& other) {
    return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

/// Whether names can be exchanged in the folder; makes two files in it to see.
inline bool exchangesNames(const std::filesystem::path& folder) {
    writeFile(folder / "probe/a", "");
    writeFile(folder / "probe/b", "");
    return exchangeNames(folder / "probe/a", folder / "probe/b");
}

/// Exchanges two names with each other, again and again, for as long as it lives.
class Exchanger {
public:
    Exchanger(const std::filesystem::path& one, const std::filesystem::path& other)
        : thread_([this, one, other](const std::stop_token& stop) {
              while (!stop.stop_requested()) {
                  if (exchangeNames(one, other)) {
                      ++exchanges_;
                  }
                  std::this_thread::yield();
              }
          }) {}

    [[nodiscard]] int exchanges() const { return exchanges_; }

private:
    std::atomic<int> exchanges_ = 0;
    std::jthread thread_;
};

/// A folder that is reached through its descriptor, wherever its name is at the time; made where it is missing.
class HeldFolder {
public:
    explicit HeldFolder(const std::filesystem::path& folder) {
        std::filesystem::create_directories(folder);
        descriptor_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }
    HeldFolder(const HeldFolder&) = delete;
    HeldFolder& operator=(const HeldFolder&) = delete;
    ~HeldFolder() { ::close(descriptor_); }
    [[nodiscard]] std::filesystem::path path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_ = -1;
};

}  // namespace brimvault::tests
