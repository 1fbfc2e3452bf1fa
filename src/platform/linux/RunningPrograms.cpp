#include "platform/RunningPrograms.h"

#include <QString>
#include <QSysInfo>
#include <charconv>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

#include "files/DirectoryHandle.h"
#include "files/OpenFiles.h"
#include "platform/ReadOnlyLibraries.h"
#include "platform/formats/FileContents.h"
#include "platform/formats/SettingsText.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxRecord = 64UL * 1024;  // bytes; Flatpak writes a few kilobytes

std::optional<pid_t> processNumber(std::string_view text) {
    pid_t number = 0;
    const auto end = text.data() + text.size();
    const auto [rest, code] = std::from_chars(text.data(), end, number);
    return code == std::errc() && rest == end && number > 0 ? std::optional(number) : std::nullopt;
}

std::string firstLine(const fs::path& file) {
    std::istringstream lines(FileContents::read(file, maxRecord).value_or(""));
    std::string line;
    std::getline(lines, line);
    return line;
}

// $XDG_RUNTIME_DIR/.flatpak/INSTANCE/ holds "info", a key file, and "pid" (flatpak's common/flatpak-instance.c). An
// instance whose process is not told is taken to run.
std::set<std::string> runningFlatpaks() {
    std::set<std::string> found;
    const auto runtime = runtimeFolder();
    if (!runtime.is_absolute()) {
        return found;
    }
    (void)files::forEachChild(runtime / ".flatpak", files::HiddenEntries::include, [&](const auto& entry) {
        const auto instance = runtime / ".flatpak" / entry.name;
        const SettingsText info(FileContents::read(instance / "info", maxRecord).value_or(""));
        const auto name = info.value("Application", "name");
        const auto process = processNumber(firstLine(instance / "pid"));
        if (name && (!process || files::isRunning(*process))) {
            found.insert(*name);
        }
        return true;
    });
    return found;
}

// The control group of a snap's process has a name "snap.NAME.PROGRAM...".
std::optional<std::string> snapOf(const std::string& process) {
    constexpr std::string_view beginning = "/snap.";
    std::ifstream groups("/proc/" + process + "/cgroup");
    for (std::string line; std::getline(groups, line);) {
        const auto begin = line.find(beginning);
        if (begin == std::string::npos) {
            continue;
        }
        const auto name = line.substr(begin + beginning.size());
        if (const auto end = name.find('.'); end != std::string::npos) {
            return name.substr(0, end);
        }
    }
    return std::nullopt;
}

std::set<std::string> runningSnaps() {
    std::set<std::string> found;
    (void)files::forEachChild("/proc", files::HiddenEntries::skip, [&](const auto& entry) {
        if (entry.name[0] >= '1' && entry.name[0] <= '9') {
            if (auto snap = snapOf(entry.name)) {
                found.insert(std::move(*snap));
            }
        }
        return true;
    });
    return found;
}

// A link's target that ends in a separator and a process number; what stands before it names the machine.
struct Lock {
    std::string machine;
    std::optional<pid_t> process;
};

std::optional<Lock> lockAt(const fs::path& link, char separator) {
    std::error_code missing;
    const auto target = fs::read_symlink(link, missing).native();
    if (missing) {
        return std::nullopt;
    }
    const auto end = target.rfind(separator);
    return end == std::string::npos
               ? Lock{target, {}}
               : Lock{target.substr(0, end), processNumber(std::string_view(target).substr(end + 1))};
}

ProfileUse useBy(const std::optional<Lock>& lock, bool isHere) {
    if (!lock) {
        return {};
    }
    if (!isHere || !lock->process) {
        return {true, !isHere, {}};
    }
    return files::isRunning(*lock->process) ? ProfileUse{true, false, lock->process} : ProfileUse{};
}

}  // namespace

bool RunningPrograms::isFlatpakRunning(const std::string& identifier) {
    if (!flatpaks_) {
        flatpaks_ = runningFlatpaks();
    }
    return flatpaks_->contains(identifier);
}

bool RunningPrograms::isSnapRunning(const std::string& name) {
    if (!snaps_) {
        snaps_ = runningSnaps();
    }
    return snaps_->contains(name);
}

ProfileUse useOfProfile(const fs::path& folder) {
    const auto lock = lockAt(folder / "SingletonLock", '-');
    return useBy(lock, lock && lock->machine == QSysInfo::machineHostName().toStdString());
}

// Its target is "ADDRESS:+PROCESS": the address says nothing of the machine where that has several.
ProfileUse useOfMozillaProfile(const fs::path& folder) { return useBy(lockAt(folder / "lock", '+'), true); }

}  // namespace brimvault::platform
