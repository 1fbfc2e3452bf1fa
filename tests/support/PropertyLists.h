#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brimvault::tests {

/// A property list in XML: a dictionary with these elements in it.
inline std::string xmlDictionary(const std::string& elements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + elements + "</dict></plist>\n";
}

inline std::string bigEndian(std::uint64_t value, int width) {
    std::string bytes;
    for (int byte = width - 1; byte >= 0; --byte) {
        bytes.push_back(static_cast<char>(value >> (8 * byte) & 0xFFU));
    }
    return bytes;
}

/// A binary property list: a dictionary whose only value is the first of these objects, which has number 2. References
/// have two bytes.
inline std::string binaryDictionary(const std::string& key, std::vector<std::string> objects) {
    const std::string length =
        key.size() < 15 ? std::string(1, static_cast<char>(0x50 + key.size())) : "\x5f\x10" + bigEndian(key.size(), 1);
    objects.insert(objects.begin(), {"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), length + key});
    std::string file = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(file.size(), 4);
        file += object;
    }
    return file + offsets + std::string(6, '\0') + "\x04\x02" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(file.size(), 8);
}

}  // namespace brimvault::tests
