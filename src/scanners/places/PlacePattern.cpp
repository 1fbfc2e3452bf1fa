#include "scanners/places/PlacePattern.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

namespace brimvault::scanners {

namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool isPlain(std::string_view pattern) { return pattern.find_first_of("*#") == std::string_view::npos; }

struct Search {
    const std::stop_token& stop;
    const std::function<void(const PlaceMatch&)>& call;
};

void search(const files::DirectoryHandle& folder, const std::filesystem::path& at, std::string_view pattern,
            const Search& what);

// None for what is not there, or where another mount begins: its volume may be one that never answers, so nothing asks
// for its status.
std::optional<files::NodeKind> kindOf(const files::DirectoryHandle& folder, const char* name,
                                      const files::Result<files::DirectoryHandle>& opened) {
    if (opened || (opened.code() != ENOTDIR && opened.code() != EACCES)) {
        return opened ? std::optional(files::NodeKind::directory) : std::nullopt;
    }
    const auto status = files::statusAt(folder.descriptor(), name);
    return status ? std::optional(status->kind) : std::nullopt;
}

void takeNamed(const files::DirectoryHandle& folder, const std::filesystem::path& at, const std::string& name,
               std::string_view rest, const Search& what) {
    const auto opened = folder.openChild(name.c_str());
    if (rest.empty()) {
        if (const auto kind = kindOf(folder, name.c_str(), opened)) {
            what.call({folder, at / name, *kind});
        }
    } else if (opened) {
        search(*opened, at / name, rest, what);
    }
}

void takeListed(const files::DirectoryHandle& folder, const std::filesystem::path& at,
                const files::DirectoryEntry& entry, std::string_view rest, const Search& what) {
    const auto path = at / entry.name;
    if (rest.empty()) {
        what.call({folder, path, entry.kind});
    } else if (entry.kind == files::NodeKind::directory) {
        if (const auto child = folder.openChild(entry.name)) {
            search(*child, path, rest, what);
        }
    }
}

void search(const files::DirectoryHandle& folder, const std::filesystem::path& at, std::string_view pattern,
            const Search& what) {
    const auto first = firstName(pattern);
    if (isPlain(first.name)) {
        takeNamed(folder, at, std::string(first.name), first.rest, what);
        return;
    }
    std::vector<std::pair<std::string, files::NodeKind>> fitting;
    const auto listed = folder.reopenForReading();
    if (listed) {
        (void)listed->forEachEntry([&](const files::DirectoryEntry& entry) {
            if (fits(entry.name, first.name)) {
                fitting.emplace_back(entry.name, entry.kind);
            }
            return !what.stop.stop_requested();
        });
    }
    std::sort(fitting.begin(), fitting.end());
    for (const auto& [one, kind] : fitting) {
        if (what.stop.stop_requested()) {
            return;
        }
        takeListed(folder, at, {one.c_str(), kind}, first.rest, what);
    }
}

}  // namespace

bool fits(std::string_view name, std::string_view pattern) {
    while (!pattern.empty() && pattern.front() != '*' && pattern.front() != '#') {
        if (name.empty() || name.front() != pattern.front()) {
            return false;
        }
        name.remove_prefix(1);
        pattern.remove_prefix(1);
    }
    if (pattern.empty()) {
        return name.empty();
    }
    const auto rest = pattern.substr(1);
    if (pattern.front() == '#') {
        return !name.empty() && isDigit(name.front()) && (fits(name.substr(1), rest) || fits(name.substr(1), pattern));
    }
    if (rest.empty()) {
        return true;
    }
    const bool isLiteral = rest.front() != '*' && rest.front() != '#';
    for (std::size_t at = 0; at <= name.size(); ++at) {
        at = isLiteral ? name.find(rest.front(), at) : at;
        if (at == std::string_view::npos) {
            return false;
        }
        if (fits(name.substr(at), rest)) {
            return true;
        }
    }
    return false;
}

FirstName firstName(std::string_view path) {
    const auto slash = path.find('/');
    return slash == std::string_view::npos ? FirstName{path, {}}
                                           : FirstName{path.substr(0, slash), path.substr(slash + 1)};
}

void forEachFitting(const files::DirectoryHandle& folder, std::string_view pattern, const std::stop_token& stop,
                    const std::function<void(const PlaceMatch&)>& call) {
    search(folder, {}, pattern, {stop, call});
}

}  // namespace brimvault::scanners
