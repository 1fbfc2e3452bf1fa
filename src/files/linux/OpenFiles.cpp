#include "files/OpenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <fstream>
#include <string_view>

#include "files/DirectoryHandle.h"
#include "files/SystemCall.h"
#include "files/linux/DeviceNumber.h"

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

std::string statusFile(pid_t process, const char* name) { return "/proc/" + std::to_string(process) + "/" + name; }

}  // namespace

OpenFiles OpenFiles::now(const std::stop_token& stop) {
    OpenFiles open;
    const pid_t self = ::getpid();
    (void)forEachChild("/proc", HiddenEntries::skip, [&](const DirectoryEntry& entry) {
        const auto process = processOf(entry.name);
        if (process && *process != self) {
            const auto note = [&](int folder, const char* name) {
                if (const auto file = identityBehind(folder, name)) {
                    open.holders_.try_emplace({file->device, file->inode}, *process);
                }
            };
            note(AT_FDCWD, statusFile(*process, "exe").c_str());
            note(AT_FDCWD, statusFile(*process, "cwd").c_str());
            if (const auto descriptors = DirectoryHandle::openForReading(statusFile(*process, "fd"))) {
                (void)descriptors->forEachEntry([&](const DirectoryEntry& number) {
                    note(descriptors->descriptor(), number.name);
                    return !stop.stop_requested();
                });
            }
        }
        return !stop.stop_requested();
    });
    return open;
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
