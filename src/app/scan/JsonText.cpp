#include "app/scan/JsonText.h"

#include <algorithm>

#include "platform/text/JsonString.h"
#include "platform/text/PathBytes.h"

namespace brimvault::app {

using platform::isUtf8;
using platform::jsonString;
using platform::percentEncoded;

namespace {

const char* truth(bool value) { return value ? "true" : "false"; }

// The parts as a list with commas.
template <typename Parts, typename Text>
std::string listed(const Parts& parts, Text text) {
    std::string list = "[";
    for (const auto& part : parts) {
        list += list.size() > 1 ? "," : "";
        list += text(part);
    }
    return list + ']';
}

std::string objectOf(const Finding& item) {
    const bool isText = isUtf8(item.path) && std::all_of(item.targets.begin(), item.targets.end(), &isUtf8);
    const auto path = [&](const std::string& bytes) { return jsonString(isText ? bytes : percentEncoded(bytes)); };
    std::string object = R"({"rule":)" + jsonString(item.rule) + R"(,"path":)" + path(item.path);
    if (!isText) {
        object += R"(,"pathEncoding":"percent")";
    }
    if (!item.targets.empty()) {
        object += R"(,"targets":)" + listed(item.targets, path);
    }
    object += R"(,"bytes":)" + std::to_string(item.bytes) + R"(,"frees":)" + std::to_string(item.frees) +
              R"(,"ticked":)" + truth(item.isTicked) + R"(,"admin":)" + truth(item.needsAdministrator);
    if (item.note != engine::ItemNote::none) {
        object += R"(,"note":)" + jsonString(engine::keyOf(item.note));
        if (!item.noteArgument.isEmpty()) {
            object += R"(,"noteArgument":)" + jsonString(item.noteArgument.toStdString());
        }
    }
    return object + '}';
}

}  // namespace

std::string jsonText(const std::vector<SectionFindings>& findings) {
    const auto section = [](const SectionFindings& found) {
        return R"({"id":)" + jsonString(found.name.id().latin1()) + R"(,"bytes":)" + std::to_string(found.bytes()) +
               R"(,"items":)" + listed(found.items, &objectOf) + '}';
    };
    return R"({"version":1,"sections":)" + listed(findings, section) + "}\n";
}

}  // namespace brimvault::app
