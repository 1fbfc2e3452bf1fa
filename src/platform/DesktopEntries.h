#pragma once

#include <QString>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brimvault::platform {

/// What the desktop knows of an installed application. A value.
struct DesktopEntry {
    std::string identifier;   ///< "org.example.Editor", without ".desktop"
    QString name;             ///< in the user's language, as text for people
    std::string icon;         ///< a name in icon themes, or an absolute path; empty for none
    std::string windowClass;  ///< StartupWMClass; empty for none
    std::string program;      ///< the name of the executable that it starts; empty where none can be told
    bool isListed = true;     ///< menus show it
};

/// The desktop entries that are installed on this computer, for the user or for all. The files are untrusted: regular
/// ones up to a size are read, and no others. One thread at a time, and not the main one: it blocks on the disk.
class DesktopEntries {
public:
    static constexpr std::size_t maxBytes = 256UL * 1024;  ///< of a file; those with all translations have 60 KiB
    static constexpr std::size_t maxEntries = 5000;        ///< of a folder; the rest is not looked at

    /// The folders that hold `applications`, `icons` and `pixmaps`, the user's own first: those of the desktop and of
    /// the package systems that install entries of their own. Absolute; some may not exist.
    [[nodiscard]] static std::vector<std::filesystem::path> dataFolders();

    /// Entries of these data folders; an entry in an earlier folder replaces one of the same identifier in a later one.
    explicit DesktopEntries(const std::vector<std::filesystem::path>& folders = dataFolders());

    /// The application of the identifier, read from its file; none if it is not installed, or was deleted by the user.
    [[nodiscard]] std::optional<DesktopEntry> find(const std::string& identifier) const;
    /// The application whose windows have that class (whatever the case of letters) or whose executable has that name;
    /// of several, one that menus show, and the one that is named like it. The first call reads all entries, for good.
    [[nodiscard]] std::optional<DesktopEntry> findByClassOrProgram(const std::string& name);

private:
    void readAll();

    std::vector<std::filesystem::path> folders_;
    std::optional<std::vector<DesktopEntry>> all_;  ///< none until they are needed
};

}  // namespace brimvault::platform
