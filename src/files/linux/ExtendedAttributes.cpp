#include "files/ExtendedAttributes.h"

#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

namespace brimvault::files {

namespace {

// Linux keeps attributes of programs in a namespace of their own and refuses names outside the four that it knows.
constexpr std::string_view userNamespace = "user.";
constexpr std::array<std::string_view, 3> systemNamespaces = {"security.", "system.", "trusted."};

bool isSystemName(std::string_view name) {
    return std::any_of(systemNamespaces.begin(), systemNamespaces.end(),
                       [&](std::string_view prefix) { return name.starts_with(prefix); });
}

// Asks for the size, then for the bytes; what grew in between does not fit and reads as absent.
std::string readSized(const std::function<ssize_t(char*, size_t)>& read) {
    const ssize_t size = read(nullptr, 0);
    if (size <= 0) {
        return {};
    }
    std::string bytes(static_cast<size_t>(size), '\0');
    const ssize_t got = read(bytes.data(), bytes.size());
    bytes.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return bytes;
}

}  // namespace

std::string extendedAttribute(const std::filesystem::path& path, const std::string& name) {
    const std::string full = isSystemName(name) ? name : std::string(userNamespace) + name;
    return readSized([&](char* buffer, size_t size) { return ::lgetxattr(path.c_str(), full.c_str(), buffer, size); });
}

std::vector<std::string> extendedAttributeNames(const std::filesystem::path& path) {
    const std::string list =
        readSized([&](char* buffer, size_t size) { return ::llistxattr(path.c_str(), buffer, size); });
    std::vector<std::string> names;
    for (size_t start = 0; start < list.size();) {
        const std::string_view name(list.c_str() + start);
        start += name.size() + 1;
        names.emplace_back(name.starts_with(userNamespace) ? name.substr(userNamespace.size()) : name);
    }
    return names;
}

}  // namespace brimvault::files
