#include "platform/formats/PropertyList.h"

#include <plist/plist.h>

#include <cctype>
#include <cstdint>

#include "platform/formats/FileContents.h"
#include "platform/formats/PropertyListCheck.h"
#include "platform/formats/PropertyListText.h"

namespace brimvault::platform {

namespace {

constexpr std::size_t maxFileBytes = 1024UL * 1024;  // people and applications write a few KiB

// Up to the first NUL: plist_get_string_val aborts over a string that holds one.
std::string textOf(plist_t value) {
    const char* text = plist_get_string_ptr(value, nullptr);
    return text == nullptr ? std::string() : std::string(text);
}

// Parses the old text form, which libplist does not know. Null where the contents are not of that form.
plist_t dictionaryOfTexts(const std::string& contents) {
    const auto texts = textsOfPropertyListText(contents);
    plist_t dictionary = texts ? plist_new_dict() : nullptr;
    for (std::size_t index = 0; dictionary != nullptr && index < texts->size(); ++index) {
        const auto& [key, value] = (*texts)[index];
        plist_dict_set_item(dictionary, key.c_str(), plist_new_string(value.c_str()));
    }
    return dictionary;
}

bool beginsAsTrue(const char* text) {
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) {
        ++text;
    }
    const char* digits = *text == '+' || *text == '-' ? text + 1 : text;
    while (*digits == '0') {
        ++digits;
    }
    const int letter = std::toupper(static_cast<unsigned char>(*text));
    return letter == 'Y' || letter == 'T' || (*digits >= '1' && *digits <= '9');
}

}  // namespace

void PropertyList::Free::operator()(void* node) const { plist_free(node); }

std::optional<PropertyList> PropertyList::read(const std::filesystem::path& file) {
    return of(FileContents::read(file, maxFileBytes));
}

std::optional<PropertyList> PropertyList::read(const files::DirectoryHandle& folder, const char* name) {
    return of(FileContents::read(folder, name, maxFileBytes));
}

std::optional<PropertyList> PropertyList::of(const std::optional<std::string>& contents) {
    if (!contents || contents->empty()) {
        return std::nullopt;
    }
    plist_t root = nullptr;
    const auto length = static_cast<std::uint32_t>(contents->size());
    const bool binary = plist_is_binary(contents->data(), length) != 0;
    if (binary && isHarmlessBinaryPropertyList(*contents)) {
        plist_from_bin(contents->data(), length, &root);
    } else if (!binary) {
        root = dictionaryOfTexts(*contents);
    }
    if (!binary && root == nullptr && isHarmlessXmlPropertyList(*contents)) {
        plist_from_xml(contents->data(), length, &root);
    }
    PropertyList list(root);
    return root != nullptr && plist_get_node_type(root) == PLIST_DICT ? std::optional(std::move(list)) : std::nullopt;
}

std::optional<bool> PropertyList::boolean(const std::string& key) const {
    plist_t value = plist_dict_get_item(dictionary_.get(), key.c_str());
    switch (value == nullptr ? PLIST_NONE : plist_get_node_type(value)) {
        case PLIST_BOOLEAN: {
            std::uint8_t answer = 0;
            plist_get_bool_val(value, &answer);
            return answer != 0;
        }
        case PLIST_UINT: {
            std::uint64_t answer = 0;
            plist_get_uint_val(value, &answer);
            return answer != 0;
        }
        case PLIST_REAL: {
            double answer = 0;
            plist_get_real_val(value, &answer);
            return answer != 0;
        }
        case PLIST_STRING:
            return beginsAsTrue(textOf(value).c_str());
        default:
            return std::nullopt;
    }
}

std::optional<std::string> PropertyList::text(const std::string& key) const {
    plist_t value = plist_dict_get_item(dictionary_.get(), key.c_str());
    return value != nullptr && plist_get_node_type(value) == PLIST_STRING ? std::optional(textOf(value)) : std::nullopt;
}

}  // namespace brimvault::platform
