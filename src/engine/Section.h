#pragma once

#include <array>
#include <cstddef>

namespace brimvault::engine {

/// The five sections, in the order in which the engine always lists them. The window has an order of its own.
enum class Section { languageResources, downloads, caches, trash, logs };

inline constexpr std::array<Section, 5> allSections = {Section::languageResources, Section::downloads, Section::caches,
                                                       Section::trash, Section::logs};

/// The name of a section where programs read it: in options, in JSON and in the history. It never changes.
[[nodiscard]] constexpr const char* idOf(Section section) {
    constexpr std::array<const char*, allSections.size()> ids = {"languages", "downloads", "caches", "trash", "logs"};
    return ids[static_cast<std::size_t>(section)];
}

/// One value for each section.
template <typename Value>
class PerSection {
public:
    Value& operator[](Section section) { return values_[static_cast<std::size_t>(section)]; }
    const Value& operator[](Section section) const { return values_[static_cast<std::size_t>(section)]; }

    bool operator==(const PerSection&) const = default;

private:
    std::array<Value, allSections.size()> values_{};
};

}  // namespace brimvault::engine
