#include "platform/PropertyList.h"

#include <fcntl.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>

#include "platform/PropertyListCheck.h"

namespace brimvault::platform {

namespace {

constexpr std::size_t largestFile = 1024UL * 1024;  // what people and applications write is a few KiB

constexpr int readOnly = O_RDONLY | O_NONBLOCK | O_CLOEXEC;  // a pipe is not waited for

// The contents of a plain file, which is closed; none for a descriptor that could not be opened.
std::optional<std::string> contentsOf(int descriptor) {
    if (descriptor < 0) {
        return std::nullopt;
    }
    std::string contents(largestFile + 1, '\0');
    std::size_t length = 0;
    struct stat status {};
    bool good = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    for (ssize_t got = 1; good && got > 0 && length < contents.size();) {
        got = ::read(descriptor, contents.data() + length, contents.size() - length);
        good = got >= 0;
        length += good ? static_cast<std::size_t>(got) : 0;
    }
    ::close(descriptor);
    contents.resize(length);
    return good && length <= largestFile ? std::optional(std::move(contents)) : std::nullopt;
}

// Up to a zero byte, where there is one: the library's call that copies a text ends the program over it.
std::string textOf(plist_t value) {
    const char* text = plist_get_string_ptr(value, nullptr);
    return text == nullptr ? std::string() : std::string(text);
}

bool beginsAsYes(const char* text) {
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
    return readDescriptor(::open(file.c_str(), readOnly));
}

std::optional<PropertyList> PropertyList::read(const files::DirectoryHandle& folder, const char* name) {
    return readDescriptor(::openat(folder.descriptor(), name, readOnly | O_NOFOLLOW));
}

std::optional<PropertyList> PropertyList::readDescriptor(int descriptor) {
    const auto contents = contentsOf(descriptor);
    if (!contents || contents->empty()) {
        return std::nullopt;
    }
    plist_t root = nullptr;
    const auto length = static_cast<std::uint32_t>(contents->size());
    const bool binary = plist_is_binary(contents->data(), length) != 0;
    if (binary && isHarmlessBinaryPropertyList(*contents)) {
        plist_from_bin(contents->data(), length, &root);
    } else if (!binary && isHarmlessXmlPropertyList(*contents)) {
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
            return beginsAsYes(textOf(value).c_str());
        default:
            return std::nullopt;
    }
}

std::optional<std::string> PropertyList::text(const std::string& key) const {
    plist_t value = plist_dict_get_item(dictionary_.get(), key.c_str());
    return value != nullptr && plist_get_node_type(value) == PLIST_STRING ? std::optional(textOf(value)) : std::nullopt;
}

}  // namespace brimvault::platform
