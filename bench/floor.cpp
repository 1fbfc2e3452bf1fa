// The lower bound: measures or removes a tree with the system calls that this takes and nothing else, without a check,
// even of mounts. What cannot be read counts nothing; what cannot be removed ends the program.
//
//     brimvault-floor measure THREADS DIR...    prints the bytes of everything in the folders that is no folder
//     brimvault-floor remove THREADS DIR...

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "StealingPool.h"

namespace {

using brimvault::bench::StealingPool;

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

/// An open folder in which there is still work, reference-counted: the last user closes it.
struct Folder {
    Folder* parent;
    std::string name;
    int descriptor;
    std::atomic<std::uint32_t> users = 1;
};

struct Work {
    Folder* parent;  ///< null for a folder named on the command line
    std::string name;
};

using List = StealingPool<Work>::List;

int descriptorOf(const Folder* folder) { return folder == nullptr ? AT_FDCWD : folder->descriptor; }

int openFolder(const Work& work) {
    return ::openat(descriptorOf(work.parent), work.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

bool isFolder(int folder, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status {};
    return ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool isDots(const char* name) { return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)); }

/// Lists folders. Each thread has a lister of its own.
class Lister {
public:
    template <typename Call>
    void forEachEntry(int folder, Call call) {
        for (;;) {
            const ssize_t length = ::getdents64(folder, buffer_.data(), buffer_.size());
            if (length <= 0) {
                return;
            }
            for (ssize_t at = 0; at < length;) {
                const auto& entry = *reinterpret_cast<const dirent64*>(buffer_.data() + at);
                at += entry.d_reclen;
                if (!isDots(entry.d_name)) {
                    call(entry);
                }
            }
        }
    }

private:
    std::vector<char> buffer_ = std::vector<char>(std::size_t{256} * 1024);
};

std::atomic<std::uint64_t> total = 0;

class Measurer {
public:
    Measurer() = default;
    Measurer(Measurer&&) = default;
    Measurer(const Measurer&) = delete;
    Measurer& operator=(const Measurer&) = delete;
    Measurer& operator=(Measurer&&) = delete;
    ~Measurer() { total += bytes_; }

    void operator()(const Work& work, List& more) {
        const int descriptor = openFolder(work);
        release(work.parent);
        if (descriptor < 0) {
            return;
        }
        Folder* self = nullptr;  // only where there are folders inside
        lister_.forEachEntry(descriptor, [&](const dirent64& entry) {
            if (!isFolder(descriptor, entry)) {
                bytes_ += sizeOf(descriptor, entry.d_name);
                return;
            }
            if (self == nullptr) {
                self = new Folder{nullptr, {}, descriptor};
            }
            ++self->users;
            more.push_back({self, entry.d_name});
        });
        if (self == nullptr) {
            ::close(descriptor);
        } else {
            release(self);
        }
    }

private:
    static std::uint64_t sizeOf(int folder, const char* name) {
        struct statx status {};
        const bool known = ::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC, STATX_SIZE, &status) == 0;
        return known ? status.stx_size : 0;
    }

    static void release(Folder* folder) {
        if (folder != nullptr && --folder->users == 0) {
            ::close(folder->descriptor);
            delete folder;
        }
    }

    Lister lister_;
    std::uint64_t bytes_ = 0;
};

class Remover {
public:
    void operator()(Work work, List& more) {
        const int descriptor = openFolder(work);
        if (descriptor < 0) {
            fail(work.name.c_str());
        }
        auto* self = new Folder{work.parent, std::move(work.name), descriptor};
        std::vector<std::pair<ino64_t, std::string>> files;
        lister_.forEachEntry(descriptor, [&](const dirent64& entry) {
            if (!isFolder(descriptor, entry)) {
                files.emplace_back(entry.d_ino, entry.d_name);
                return;
            }
            ++self->users;
            more.push_back({self, entry.d_name});
        });
        std::sort(files.begin(), files.end());  // by inode: most likely their order on the disk
        for (const auto& [inode, name] : files) {
            if (::unlinkat(descriptor, name.c_str(), 0) != 0) {
                fail(name.c_str());
            }
        }
        release(self);
    }

private:
    // A folder goes when the last one inside it has gone.
    static void release(Folder* folder) {
        while (folder != nullptr && --folder->users == 0) {
            ::close(folder->descriptor);
            if (::unlinkat(descriptorOf(folder->parent), folder->name.c_str(), AT_REMOVEDIR) != 0) {
                fail(folder->name.c_str());
            }
            delete std::exchange(folder, folder->parent);
        }
    }

    Lister lister_;
};

void allowManyDescriptors() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() < 3 || (words[0] != "measure" && words[0] != "remove") || std::atoi(words[1].c_str()) < 1) {
        std::cerr << "usage: brimvault-floor measure|remove THREADS DIR...\n";
        return 2;
    }
    allowManyDescriptors();
    List folders;
    for (std::size_t at = 2; at < words.size(); ++at) {
        folders.push_back({nullptr, words[at]});
    }
    StealingPool<Work> share(static_cast<unsigned>(std::atoi(words[1].c_str())), std::move(folders));
    if (words[0] == "remove") {
        share.run([] { return Remover(); });
        return 0;
    }
    share.run([] { return Measurer(); });
    std::cout << "bytes " << total << '\n';
    return 0;
}
