#include "files/OpenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <functional>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

#include "files/DirectoryHandle.h"
#include "files/SystemCall.h"
#include "files/linux/StatxFields.h"

namespace brimvault::files {

namespace {

std::optional<pid_t> processOf(std::string_view name) {
    pid_t number = 0;
    const auto [end, code] = std::from_chars(name.data(), name.data() + name.size(), number);
    return code == std::errc() && end == name.data() + name.size() && number > 0 ? std::optional(number) : std::nullopt;
}

// What a link of a process leads to. The answer comes from what the kernel knows already: a file on a dead volume
// must not hold up the scan.
std::optional<FileIdentity> identityBehind(int folder, const char* name) {
    struct statx raw {};
    constexpr int flags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (uninterrupted([&] { return ::statx(folder, name, flags, STATX_TYPE | STATX_INO, &raw); }) != 0 ||
        !(S_ISREG(raw.stx_mode) || S_ISDIR(raw.stx_mode))) {
        return std::nullopt;
    }
    return FileIdentity{deviceNumber(raw), raw.stx_ino, {}};
}

// The mode of the link to a descriptor, in a folder of /proc, tells how that was opened.
bool isOpenForWriting(int folder, const char* name) {
    struct stat link {};
    return ::fstatat(folder, name, &link, AT_SYMLINK_NOFOLLOW) == 0 && (link.st_mode & S_IWUSR) != 0;
}

// None unless it is a regular file without a name on one of the devices.
std::optional<RemovedFile> removedFileBehind(int folder, const char* name, const std::set<std::uint64_t>& devices) {
    struct statx raw {};
    constexpr int flags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    constexpr unsigned asked = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BLOCKS;
    if (uninterrupted([&] { return ::statx(folder, name, flags, asked, &raw); }) != 0 || !S_ISREG(raw.stx_mode) ||
        raw.stx_nlink != 0 || !devices.contains(deviceNumber(raw))) {
        return std::nullopt;
    }
    return RemovedFile{deviceNumber(raw), raw.stx_ino, allocatedBytes(raw)};
}

std::string statusFile(pid_t process, const char* name) { return "/proc/" + std::to_string(process) + "/" + name; }

void forEachOtherProcess(const std::stop_token& stop, const std::function<void(pid_t process)>& call) {
    const pid_t self = ::getpid();
    (void)forEachChild("/proc", HiddenEntries::skip, [&](const DirectoryEntry& entry) {
        const auto process = processOf(entry.name);
        if (process && *process != self) {
            call(*process);
        }
        return !stop.stop_requested();
    });
}

// Calls with every descriptor of the process: a name in an open folder.
void forEachDescriptor(pid_t process, const std::stop_token& stop,
                       const std::function<void(int folder, const char* name)>& call) {
    if (const auto descriptors = DirectoryHandle::openForReading(statusFile(process, "fd"))) {
        (void)descriptors->forEachEntry([&](const DirectoryEntry& number) {
            call(descriptors->descriptor(), number.name);
            return !stop.stop_requested();
        });
    }
}

}  // namespace

OpenFiles OpenFiles::now(const std::stop_token& stop, OpenFor use) {
    OpenFiles open;
    forEachOtherProcess(stop, [&](pid_t process) {
        const auto note = [&](int folder, const char* name) {
            if (const auto file = identityBehind(folder, name)) {
                open.holders_.try_emplace({file->device, file->inode}, process);
            }
        };
        if (use == OpenFor::anything) {
            note(AT_FDCWD, statusFile(process, "exe").c_str());
            note(AT_FDCWD, statusFile(process, "cwd").c_str());
        }
        forEachDescriptor(process, stop, [&](int folder, const char* name) {
            if (use == OpenFor::anything || isOpenForWriting(folder, name)) {
                note(folder, name);
            }
        });
    });
    return open;
}

// A file that several processes of one program hold, or one process more than once, counts once for the program.
std::vector<RemovedFile> removedFilesInUse(const std::set<std::uint64_t>& devices, const std::stop_token& stop) {
    std::map<std::tuple<std::string, std::uint64_t, std::uint64_t>, RemovedFile> files;
    forEachOtherProcess(stop, [&](pid_t process) {
        forEachDescriptor(process, stop, [&](int folder, const char* name) {
            if (auto file = removedFileBehind(folder, name, devices)) {
                file->program = programName(process);
                files.try_emplace({file->program, file->device, file->inode}, *file);
            }
        });
    });
    std::vector<RemovedFile> found;
    std::transform(files.begin(), files.end(), std::back_inserter(found),
                   [](const auto& entry) { return entry.second; });
    return found;
}

std::string programName(pid_t process) {
    std::ifstream file(statusFile(process, "comm"));
    std::string name;
    std::getline(file, name);
    return name;
}

bool isRunning(pid_t process) {
    std::ifstream file(statusFile(process, "stat"));
    std::string line;
    std::getline(file, line);
    // "NUMBER (NAME) STATE ...": the name may hold anything.
    const auto name = line.rfind(") ");
    return name != std::string::npos && name + 2 < line.size() && line[name + 2] != 'Z' && line[name + 2] != 'X';
}

}  // namespace brimvault::files
