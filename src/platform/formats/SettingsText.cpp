#include "platform/formats/SettingsText.h"

#include <algorithm>

namespace brimvault::platform {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\f\v";
    const auto first = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

struct Line {
    enum class Kind { blank, group, value, unknown } kind;
    std::string_view name;   ///< of the group, or the key
    std::string_view value;  ///< without its quotes
};

Line lineOf(std::string_view text) {
    const auto line = trimmed(text);
    if (line.empty() || line.front() == '#' || line.front() == ';') {
        return {Line::Kind::blank, {}, {}};
    }
    if (line.front() == '[' && line.back() == ']') {
        return {Line::Kind::group, trimmed(line.substr(1, line.size() - 2)), {}};
    }
    const auto separator = line.find('=');
    if (separator == std::string_view::npos) {
        return {Line::Kind::unknown, {}, {}};
    }
    auto value = trimmed(line.substr(separator + 1));
    if (value.size() > 1 && value.front() == '"' && value.back() == '"') {
        value = value.substr(1, value.size() - 2);
    }
    return {Line::Kind::value, trimmed(line.substr(0, separator)), value};
}

}  // namespace

SettingsText::SettingsText(std::string_view text) {
    Values* values = &groups_[{}];
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines_.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto [kind, name, value] = lineOf(lines_.back());
        if (kind == Line::Kind::group) {
            values = &groups_[std::string(name)];
        } else if (kind == Line::Kind::value) {
            values->insert_or_assign(std::string(name), std::string(value));
        }
        isUnderstood_ = isUnderstood_ && kind != Line::Kind::unknown;
    }
}

std::optional<std::string> SettingsText::value(std::string_view group, std::string_view key) const {
    const auto values = groups_.find(group);
    if (values == groups_.end()) {
        return std::nullopt;
    }
    const auto found = values->second.find(key);
    return found == values->second.end() ? std::nullopt : std::optional(found->second);
}

// Replaces the line that counts, else adds one behind the last line of the group, else adds the group at the end.
void SettingsText::setValue(std::string_view group, std::string_view key, std::string_view value) {
    groups_[std::string(group)].insert_or_assign(std::string(key), std::string(value));
    std::string line = std::string(key).append("=").append(value);
    auto behindGroup = group.empty() ? lines_.begin() : lines_.end();
    auto counts = lines_.end();
    std::string_view current;
    for (auto place = lines_.begin(); place != lines_.end(); ++place) {
        const auto read = lineOf(*place);
        current = read.kind == Line::Kind::group ? read.name : current;
        if (current == group && read.kind != Line::Kind::blank) {
            behindGroup = place + 1;
            counts = read.kind == Line::Kind::value && read.name == key ? place : counts;
        }
    }
    if (counts != lines_.end()) {
        *counts = std::move(line);
        return;
    }
    if (behindGroup == lines_.end() && current != group) {
        lines_.push_back("[" + std::string(group) + "]");
        behindGroup = lines_.end();
    }
    lines_.insert(behindGroup, std::move(line));
}

std::string SettingsText::text() const {
    std::string text;
    for (const auto& line : lines_) {
        text.append(line).push_back('\n');
    }
    return text;
}

}  // namespace brimvault::platform
