#include "scanners/SystemPathsGenerator.h"

#include <string_view>

#include "platform/System.h"

namespace brimvault::scanners {

SystemPathsGenerator::SystemPathsGenerator() : homeFolder_(platform::homeFolder()) {}

const SystemPathsGenerator& SystemPathsGenerator::shared() {
    static const SystemPathsGenerator instance;
    return instance;
}

std::filesystem::path SystemPathsGenerator::urlForPath(const std::filesystem::path& path) const {
    constexpr std::string_view home = "~/";
    const auto& text = path.native();
    if (!text.starts_with(home)) {
        return path;
    }
    const bool endsInSlash = !homeFolder_.has_filename();  // "/" itself
    return std::filesystem::path(homeFolder_.native() + (endsInSlash ? "" : "/") + text.substr(home.size()));
}

}  // namespace brimvault::scanners
