#include "files/OpenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <fstream>
#include <string_view>

#include "files/DirectoryHandle.h"
#include "files/SystemCall.h"

namespace brimvault::files {

namespace {

std::optional<pid_t> processOf(std::string_view name) {
    pid_t number = 0;
    const auto [end, code] = std::from_chars(name.data(), name.data() + name.size(), number);
    return code == std::errc() && end == name.data() + name.size() && number > 0 ? std::optional(number) : std::nullopt;
}

// What a process has open under a number. The answer comes from what the kernel knows already: a file on a dead volume
// must not hold up the scan.
std::optional<FileIdentity> identityBehind(int descriptors, const char* number) {
    struct statx raw {};
    constexpr int flags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (uninterrupted([&] { return ::statx(descriptors, number, flags, STATX_TYPE | STATX_INO, &raw); }) != 0 ||
        !(S_ISREG(raw.stx_mode) || S_ISDIR(raw.stx_mode))) {
        return std::nullopt;
    }
    return FileIdentity{(static_cast<std::uint64_t>(raw.stx_dev_major) << 32U) | raw.stx_dev_minor, raw.stx_ino, {}};
}

std::string statusFile(pid_t process, const char* name) { return "/proc/" + std::to_string(process) + "/" + name; }

}  // namespace

OpenFiles OpenFiles::now(const std::stop_token& stop) {
    OpenFiles open;
    const pid_t self = ::getpid();
    (void)forEachChild("/proc", HiddenEntries::skip, [&](const DirectoryEntry& entry) {
        const auto process = processOf(entry.name);
        if (process && *process != self) {
            const auto descriptors = DirectoryHandle::openForReading(statusFile(*process, "fd"));
            if (descriptors) {
                (void)descriptors->forEachEntry([&](const DirectoryEntry& number) {
                    if (const auto file = identityBehind(descriptors->descriptor(), number.name)) {
                        open.holders_.try_emplace({file->device, file->inode}, *process);
                    }
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
