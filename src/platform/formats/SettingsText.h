#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brimvault::platform {

/// A settings file in INI format: lines "[group]" and "key=value", and comments. Parses and edits in memory;
/// FileContents reads the file. What is not changed stays byte for byte.
class SettingsText {
public:
    using Values = std::map<std::string, std::string, std::less<>>;

    SettingsText() = default;
    explicit SettingsText(std::string_view text);

    /// Every line could be parsed.
    [[nodiscard]] bool isUnderstood() const { return isUnderstood_; }
    /// By name; what stands before the first group is in a group with an empty name. Of two values for a key the later
    /// counts.
    [[nodiscard]] const std::map<std::string, Values, std::less<>>& groups() const { return groups_; }
    [[nodiscard]] std::optional<std::string> value(std::string_view group, std::string_view key) const;

    /// Precondition: no line break in any of these, and no "=" in the key.
    void setValue(std::string_view group, std::string_view key, std::string_view value);
    [[nodiscard]] std::string text() const;

private:
    std::vector<std::string> lines_;
    std::map<std::string, Values, std::less<>> groups_;
    bool isUnderstood_ = true;
};

}  // namespace brimvault::platform
