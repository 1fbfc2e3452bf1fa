#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::platform {

/// A property list whose root is a dictionary: in XML or binary form, or in the old text form (`{ key = value; }`), of
/// which only the strings are read. Any thread, one at a time.
class PropertyList {
public:
    /// None for a file that is missing, no regular file, damaged, larger than 1 MiB, or whose root is no dictionary.
    [[nodiscard]] static std::optional<PropertyList> read(const std::filesystem::path& file);
    /// The same for a name in an open folder; none where it is a symbolic link.
    [[nodiscard]] static std::optional<PropertyList> read(const files::DirectoryHandle& folder, const char* name);

    /// The value as a boolean: a boolean, a number (0 is false), or a string, which is true if it begins with Y, T or a
    /// number other than 0, as macOS reads what users have set by hand. None without such a value.
    [[nodiscard]] std::optional<bool> boolean(const std::string& key) const;
    /// A string, in UTF-8. None where the value is missing or of another type.
    [[nodiscard]] std::optional<std::string> text(const std::string& key) const;

private:
    struct Free {
        void operator()(void* node) const;
    };
    explicit PropertyList(void* dictionary) : dictionary_(dictionary) {}
    static std::optional<PropertyList> of(const std::optional<std::string>& contents);

    std::unique_ptr<void, Free> dictionary_;
};

}  // namespace brimvault::platform
