#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "platform/System.h"

namespace brimvault::tests {

/// For as long as it lives, the user's home folder is the one given, and the environment holds just these variables.
class SubstituteHome {
public:
    explicit SubstituteHome(const std::filesystem::path& home, std::map<std::string, std::string> environment = {})
        : system_({[home] { return std::optional(home); }, [] { return std::string("anna"); },
                   [variables = std::move(environment)](const char* name) {
                       const auto found = variables.find(name);
                       return found == variables.end() ? std::string() : found->second;
                   }}) {}

private:
    platform::SubstituteSystem system_;
};

}  // namespace brimvault::tests
