#include "platform/formats/PropertyListCheck.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace brimvault::platform {

namespace {

constexpr std::size_t maxXmlElements = 40'000;  // even all nested, they fit on the stack that libplist recurses on

// Walks a binary property list without building anything. The format: objects, then a table of their offsets, then a
// trailer of 32 bytes with the widths of an offset and of a reference, the number of objects, the index of the root,
// and the offset of the table. An object's first byte holds its type and a count; all numbers are big-endian.
class BinaryListCheck {
public:
    explicit BinaryListCheck(const std::string& contents) : contents_(contents) {}

    [[nodiscard]] bool isHarmless() {
        if (contents_.size() < trailerSize) {
            return false;
        }
        const std::size_t trailer = contents_.size() - trailerSize;
        offsetWidth_ = number(trailer + 6, 1);
        referenceWidth_ = number(trailer + 7, 1);
        count_ = number(trailer + 8, 8);
        table_ = number(trailer + 24, 8);
        if (offsetWidth_ == 0 || offsetWidth_ > 8 || referenceWidth_ == 0 || referenceWidth_ > 8) {
            return false;
        }
        std::vector<Place> open = {{number(trailer + 16, 8), 0}};
        for (std::size_t seen = 0; !open.empty(); ++seen) {
            const Place place = open.back();
            open.pop_back();
            if (seen > maxObjects || place.depth > maxDepth || !openObject(place, open)) {
                return false;
            }
        }
        return true;
    }

private:
    struct Place {
        std::uint64_t object;
        int depth;
    };
    static constexpr std::size_t trailerSize = 32;
    static constexpr std::size_t maxObjects = 100'000;  // each counts as often as it is referenced
    static constexpr int maxDepth = 200;
    static constexpr std::uint64_t maxValueBytes = 8ULL * 1024 * 1024;  // several times the size of a whole file

    // Big-endian. Out of bounds it is the maximum of the type, which no valid offset or index reaches.
    [[nodiscard]] std::uint64_t number(std::uint64_t at, std::uint64_t width) const {
        if (at > contents_.size() || width > contents_.size() - at) {
            return std::numeric_limits<std::uint64_t>::max();
        }
        std::uint64_t value = 0;
        for (std::uint64_t byte = 0; byte < width; ++byte) {
            value = value << 8U | static_cast<unsigned char>(contents_[at + byte]);
        }
        return value;
    }

    // libplist copies a value as often as it is referenced.
    bool takeValue(std::uint64_t kind, std::uint64_t length) {
        constexpr std::uint64_t bytes = 0x4;
        constexpr std::uint64_t wideText = 0x6;
        if (kind >= bytes && kind <= wideText) {
            valueBytes_ += length * (kind == wideText ? 2 : 1);
        }
        return valueBytes_ <= maxValueBytes;
    }

    // Pushes the objects that this one references.
    bool openObject(const Place& place, std::vector<Place>& open) {
        if (place.object >= count_ || place.object > contents_.size()) {
            return false;
        }
        const std::uint64_t at = number(table_ + place.object * offsetWidth_, offsetWidth_);
        if (at >= contents_.size()) {
            return false;
        }
        const std::uint64_t marker = number(at, 1);
        const std::uint64_t kind = marker >> 4U;
        constexpr std::uint64_t array = 0xA;
        constexpr std::uint64_t set = 0xC;
        constexpr std::uint64_t dictionary = 0xD;
        std::uint64_t length = marker & 0xFU;
        std::uint64_t first = at + 1;
        if (length == 0xFU) {  // the count is a separate integer object
            const std::uint64_t width = std::uint64_t{1} << (number(at + 1, 1) & 0xFU);
            length = width > 8 ? contents_.size() : number(at + 2, width);
            first = at + 2 + width;
        }
        length = std::min<std::uint64_t>(length, contents_.size());
        if (kind != array && kind != set && kind != dictionary) {
            return takeValue(kind, length);
        }
        const std::uint64_t references = length * (kind == dictionary ? 2 : 1);
        if (references > maxObjects || open.size() + references > maxObjects) {
            return false;
        }
        for (std::uint64_t index = 0; index < references; ++index) {
            open.push_back({number(first + index * referenceWidth_, referenceWidth_), place.depth + 1});
        }
        return true;
    }

    const std::string& contents_;
    std::uint64_t offsetWidth_ = 0;
    std::uint64_t referenceWidth_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t table_ = 0;
    std::uint64_t valueBytes_ = 0;
};

}  // namespace

bool isHarmlessXmlPropertyList(const std::string& contents) {
    std::size_t elements = 0;
    for (std::size_t at = contents.find('<'); at != std::string::npos; at = contents.find('<', at + 1)) {
        elements += contents.compare(at, 2, "</") == 0 ? 0 : 1;
    }
    return elements <= maxXmlElements;
}

bool isHarmlessBinaryPropertyList(const std::string& contents) { return BinaryListCheck(contents).isHarmless(); }

}  // namespace brimvault::platform
