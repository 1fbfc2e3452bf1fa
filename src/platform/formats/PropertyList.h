#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::platform {

/// A property list file in XML or binary form whose outermost value is a dictionary, or, of its texts alone, one in the
/// oldest form (`{ key = value; }`). Any thread; not to be used by two at once.
class PropertyList {
public:
    /// None for a file that is missing, no plain file, damaged, larger than 1 MiB, or no dictionary.
    [[nodiscard]] static std::optional<PropertyList> read(const std::filesystem::path& file);
    /// The same of a name in an open folder; none where it is a link.
    [[nodiscard]] static std::optional<PropertyList> read(const files::DirectoryHandle& folder, const char* name);

    /// A boolean, a number (0 is NO), or a text that begins as a yes does: with Y, T, or a number other than 0, as the
    /// platform reads what users have set by hand. None without such a value.
    [[nodiscard]] std::optional<bool> boolean(const std::string& key) const;
    /// A text, in UTF-8. None where the value is missing or of another kind.
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
