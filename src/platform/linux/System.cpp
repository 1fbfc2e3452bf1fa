#include "platform/System.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace brimvault::platform {

namespace {

constexpr std::size_t initialBufferSize = 1024;
constexpr std::size_t maxBufferSize = 1024UL * 1024;  // a larger record is treated as missing

// Calls back with the database record of the user who runs the process; false when there is none.
bool withUserRecord(const std::function<void(const passwd&)>& call) {
    for (std::vector<char> buffer(initialBufferSize); buffer.size() <= maxBufferSize;
         buffer.resize(buffer.size() * 2)) {
        passwd record{};
        passwd* found = nullptr;
        const int code = ::getpwuid_r(::getuid(), &record, buffer.data(), buffer.size(), &found);
        if (code != ERANGE) {
            if (found != nullptr) {
                call(*found);
            }
            return found != nullptr;
        }
    }
    return false;
}

std::string environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::optional<std::filesystem::path> recordedHomeFolder() {
    std::optional<std::filesystem::path> home;
    withUserRecord([&](const passwd& record) {
        if (record.pw_dir != nullptr && record.pw_dir[0] == '/') {
            home = record.pw_dir;
        }
    });
    return home;
}

std::string userName() {
    std::string name;
    if (withUserRecord([&](const passwd& record) { name = record.pw_name; })) {
        return name;
    }
    name = environmentVariable("LOGNAME");
    return name.empty() ? environmentVariable("USER") : name;
}

}  // namespace

System realSystem() { return {recordedHomeFolder, userName, environmentVariable}; }

}  // namespace brimvault::platform
