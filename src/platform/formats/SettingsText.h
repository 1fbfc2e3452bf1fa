#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brimvault::platform {

/// A text of settings as desktops write them: lines "[group]" and "key=value", and comments. Reading and changing are
/// done in memory, so that the file can be read as carefully as any other. What is not changed stays as it is.
class SettingsText {
public:
    using Values = std::map<std::string, std::string, std::less<>>;

    SettingsText() = default;
    explicit SettingsText(std::string_view text);

    /// Every line was one of settings.
    [[nodiscard]] bool isUnderstood() const { return isUnderstood_; }
    /// By the names of their groups; what stands before the first group is in one without a name. Where a key is given
    /// twice, the later value counts.
    [[nodiscard]] const std::map<std::string, Values, std::less<>>& groups() const { return groups_; }
    [[nodiscard]] std::optional<std::string> value(std::string_view group, std::string_view key) const;

    /// Neither of the texts holds what a line or a key ends with.
    void setValue(std::string_view group, std::string_view key, std::string_view value);
    [[nodiscard]] std::string text() const;

private:
    std::vector<std::string> lines_;
    std::map<std::string, Values, std::less<>> groups_;
    bool isUnderstood_ = true;
};

}  // namespace brimvault::platform
