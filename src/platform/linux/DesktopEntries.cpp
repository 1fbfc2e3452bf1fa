#include "platform/DesktopEntries.h"

#include <glib.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "files/DirectoryHandle.h"
#include "platform/System.h"
#include "platform/formats/FileContents.h"
#include "platform/linux/Owned.h"
#include "platform/text/DisplayText.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

using KeyFile = Owned<GKeyFile, g_key_file_unref>;

constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr std::string_view suffix = ".desktop";

std::string text(GKeyFile* file, const char* key) {
    const Owned<char, g_free> value(g_key_file_get_string(file, group, key, nullptr));
    return value ? value.get() : std::string();
}

bool isSet(GKeyFile* file, const char* key) { return g_key_file_get_boolean(file, group, key, nullptr) != 0; }

// By the environment's languages, which GLib reads by itself. Anybody may have written the file.
QString nameIn(GKeyFile* file) {
    constexpr qsizetype maxLength = 100;
    const Owned<char, g_free> value(
        g_key_file_get_locale_string(file, group, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    return value ? displayText(value.get()).trimmed().left(maxLength) : QString();
}

// Many entries append an extension, although themes know icons without one.
std::string iconIn(GKeyFile* file) {
    const fs::path named = text(file, G_KEY_FILE_DESKTOP_KEY_ICON);
    if (named.is_absolute()) {
        return named;
    }
    if (named.has_parent_path() || named == "." || named == "..") {
        return {};
    }
    const auto extension = named.extension();
    return extension == ".png" || extension == ".svg" || extension == ".xpm" ? named.stem() : named;
}

std::vector<std::string> wordsOf(const std::string& command) {
    char** parsed = nullptr;
    if (g_shell_parse_argv(command.c_str(), nullptr, &parsed, nullptr) == 0) {
        return {};
    }
    const Owned<char*, g_strfreev> words(parsed);
    std::vector<std::string> found;
    for (char** word = parsed; *word != nullptr; ++word) {
        found.emplace_back(*word);
    }
    return found;
}

// The program behind "env NAME=VALUE program" and "flatpak run --command=program".
std::string programIn(GKeyFile* file) {
    constexpr std::string_view runs = "--command=";
    const auto words = wordsOf(text(file, G_KEY_FILE_DESKTOP_KEY_EXEC));
    const auto first = std::find_if(words.begin(), words.end(), [](const std::string& word) {
        return fs::path(word).filename() != "env" && word.find('=') == std::string::npos;
    });
    if (first == words.end() || fs::path(*first).filename() != "flatpak") {
        return first == words.end() ? std::string() : fs::path(*first).filename().string();
    }
    const auto command =
        std::find_if(first, words.end(), [&](const std::string& word) { return word.starts_with(runs); });
    return command == words.end() ? std::string() : fs::path(command->substr(runs.size())).filename().string();
}

// What a file says. An entry that is marked as hidden was deleted by the user, and stands for none, like one without a
// name.
std::optional<DesktopEntry> parse(const std::string& contents, const std::string& identifier) {
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(file.get(), contents.data(), contents.size(), G_KEY_FILE_NONE, nullptr) == 0 ||
        text(file.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION ||
        isSet(file.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN) || nameIn(file.get()).isEmpty()) {
        return std::nullopt;
    }
    return DesktopEntry{identifier,
                        nameIn(file.get()),
                        iconIn(file.get()),
                        text(file.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS),
                        programIn(file.get()),
                        !isSet(file.get(), G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY)};
}

// The places that an identifier may have in a folder: "vendor-editor" is vendor-editor.desktop or
// vendor/editor.desktop.
std::vector<std::string> fileNamesOf(const std::string& identifier) {
    std::vector<std::string> names{identifier + std::string(suffix)};
    for (auto dash = identifier.find('-', 1); dash != std::string::npos; dash = identifier.find('-', dash + 1)) {
        names.push_back(names.front());
        names.back()[dash] = '/';
    }
    return names;
}

bool isIdentifier(const std::string& text) {
    return !text.empty() && text.front() != '.' && text.find('/') == std::string::npos;
}

void appendIdentifiers(const fs::path& folder, const std::string& prefix, std::set<std::string>& found) {
    std::size_t looked = 0;
    // What cannot be read is not installed.
    (void)files::forEachChild(folder, files::HiddenEntries::skip, [&](const files::DirectoryEntry& entry) {
        const std::string name = entry.name;
        if (name.ends_with(suffix)) {
            found.insert(prefix + name.substr(0, name.size() - suffix.size()));
        } else if (prefix.empty() && entry.kind == files::NodeKind::directory) {
            appendIdentifiers(folder / name, name + "-", found);
        }
        return ++looked < DesktopEntries::maxEntries;
    });
}

bool equalsIgnoringCase(const std::string& left, const std::string& right) {
    return g_ascii_strcasecmp(left.c_str(), right.c_str()) == 0;
}

// How well the entry fits the name; 0 if it does not.
int fitness(const DesktopEntry& entry, const std::string& name) {
    if (!equalsIgnoringCase(entry.windowClass, name) && entry.program != name) {
        return 0;
    }
    const auto lastPart = entry.identifier.substr(entry.identifier.rfind('.') + 1);
    const bool isNamesake = equalsIgnoringCase(lastPart, name) || equalsIgnoringCase(entry.identifier, name);
    return 1 + (isNamesake ? 1 : 0) + (entry.isListed ? 2 : 0);
}

}  // namespace

std::vector<fs::path> DesktopEntries::dataFolders() {
    const fs::path named = system().environmentVariable("XDG_DATA_HOME");
    const auto own = named.is_absolute() ? named : homeFolder() / ".local/share";
    std::vector<fs::path> folders{own, own / "flatpak/exports/share"};
    const auto listed = system().environmentVariable("XDG_DATA_DIRS");
    std::istringstream shared((listed.empty() ? "/usr/local/share:/usr/share" : listed) +
                              ":/var/lib/flatpak/exports/share:/var/lib/snapd/desktop");
    for (std::string folder; std::getline(shared, folder, ':');) {
        const auto place = systemRoot() / fs::path(folder).lexically_normal().relative_path();
        if (fs::path(folder).is_absolute() && std::find(folders.begin(), folders.end(), place) == folders.end()) {
            folders.push_back(place);
        }
    }
    return folders;
}

DesktopEntries::DesktopEntries(const std::vector<fs::path>& folders) {
    for (const auto& folder : folders) {
        folders_.push_back(folder / "applications");
    }
}

std::optional<DesktopEntry> DesktopEntries::find(const std::string& identifier) const {
    if (!isIdentifier(identifier)) {
        return std::nullopt;
    }
    for (const auto& folder : folders_) {
        for (const auto& name : fileNamesOf(identifier)) {
            if (const auto contents = FileContents::read(folder / name, maxBytes)) {
                return parse(*contents, identifier);
            }
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::findByClassOrProgram(const std::string& name) {
    if (name.empty()) {
        return std::nullopt;
    }
    readAll();
    const auto best = std::max_element(all_->begin(), all_->end(), [&](const auto& left, const auto& right) {
        return fitness(left, name) < fitness(right, name);
    });
    return best == all_->end() || fitness(*best, name) == 0 ? std::nullopt : std::optional(*best);
}

void DesktopEntries::readAll() {
    if (all_) {
        return;
    }
    std::set<std::string> identifiers;
    for (const auto& folder : folders_) {
        std::error_code unresolved;
        appendIdentifiers(fs::canonical(folder, unresolved), {}, identifiers);  // it may be a link of the user's
    }
    all_.emplace();
    for (const auto& identifier : identifiers) {
        if (auto entry = find(identifier)) {
            all_->push_back(std::move(*entry));
        }
    }
}

}  // namespace brimvault::platform
