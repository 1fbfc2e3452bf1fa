#include "trial/TemporaryFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace brimvault::trial {

namespace {

constexpr int oneFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Takes away what is no folder and answers the folders that are left.
std::vector<std::string> emptyOfFiles(int folder) {
    std::vector<std::string> folders;
    DIR* stream = ::fdopendir(::openat(folder, ".", oneFolder));
    if (stream == nullptr) {
        return folders;
    }
    while (const dirent* entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        if (::unlinkat(folder, entry->d_name, 0) != 0 && errno == EISDIR) {
            folders.emplace_back(name);
        }
    }
    ::closedir(stream);
    return folders;
}

struct Level {
    std::string name;
    std::vector<std::string> folders;
};

}  // namespace

// One descriptor whatever the depth: down by name, up by "..". Only for trees that nobody else changes.
void removeTree(const std::filesystem::path& folder) {
    int current = ::open(folder.c_str(), oneFolder);
    if (current < 0) {
        return;
    }
    std::vector<Level> levels = {{{}, emptyOfFiles(current)}};
    while (!levels.empty()) {
        auto& folders = levels.back().folders;
        const bool down = !folders.empty();
        const std::string name = down ? folders.back() : "..";
        if (down) {
            folders.pop_back();
            (void)!::fchmodat(current, name.c_str(), S_IRWXU, 0);  // where it fails, opening may not
        }
        const int next = ::openat(current, name.c_str(), oneFolder);
        if (next < 0) {
            ::unlinkat(current, name.c_str(), AT_REMOVEDIR);
            continue;
        }
        ::close(current);
        current = next;
        if (down) {
            levels.push_back({name, emptyOfFiles(current)});
        } else {
            if (levels.size() > 1) {
                ::unlinkat(current, levels.back().name.c_str(), AT_REMOVEDIR);
            }
            levels.pop_back();
        }
    }
    ::close(current);
    ::rmdir(folder.c_str());
}

std::filesystem::path folderInMemory() {
    const std::filesystem::path folder = "/dev/shm";
    return ::access(folder.c_str(), R_OK | W_OK | X_OK) == 0 ? folder : std::filesystem::temp_directory_path();
}

TemporaryFolder::TemporaryFolder(const std::filesystem::path& in) {
    auto name = (std::filesystem::canonical(in) / "brimvault-XXXXXX").native();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    path_ = name;
}

}  // namespace brimvault::trial
