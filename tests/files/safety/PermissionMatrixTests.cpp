// Folders of every mode and of three owners, removed by a user without rights of his own: what goes is what GNU rm
// removes after the user's own folders were opened to him, and the reason is what stands in the way, not what follows
// from it.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "files/removal/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::RemovalEnd;

namespace {

constexpr unsigned user = 65534;  // whom becomeNobody() makes of the superuser
constexpr unsigned stranger = 65533;
constexpr unsigned modes = 512;
constexpr mode_t sticky = 01777;
constexpr mode_t plain = 0755;

struct Owner {
    const char* name;
    unsigned owner;
    unsigned group;
};
// For each, another three bits of the mode are those that count for the user.
constexpr Owner owners[] = {{"own", user, user}, {"group", stranger, user}, {"root", 0, 0}};

// The folder that holds the cells.
struct Place {
    const char* name;
    unsigned owner;
    mode_t mode;
};
constexpr Place places[] = {{"plain", user, plain}, {"sticky", stranger, sticky}, {"closed", stranger, plain}};

void give(const fs::path& path, const Owner& owner, mode_t mode) {
    if (::lchown(path.c_str(), owner.owner, owner.group) != 0 || ::chmod(path.c_str(), mode) != 0) {
        throw std::system_error(errno, std::generic_category(), path.native());
    }
}

// A folder of this mode, all of one owner. A full one holds a file, a full folder and an empty one.
void makeCell(const fs::path& cell, const Owner& owner, mode_t mode, bool isFull) {
    fs::create_directory(cell);
    if (isFull) {
        writeFile(cell / "file", "");
        writeFile(cell / "full/file", "");
        fs::create_directory(cell / "empty");
        for (const char* inner : {"file", "full/file", "full", "empty"}) {
            give(cell / inner, owner, plain);
        }
    }
    give(cell, owner, mode);
}

// A full cell and an empty one of every mode and owner. Their names.
std::vector<std::string> makeCells(const fs::path& folder, const Place& place) {
    fs::create_directories(folder);
    std::vector<std::string> names;
    for (const auto& owner : owners) {
        for (unsigned mode = 0; mode < modes; ++mode) {
            for (const char* kind : {"full", "empty"}) {
                names.push_back(kind + ("-" + std::string(owner.name)) + std::to_string(mode));
                makeCell(folder / names.back(), owner, mode, kind == std::string("full"));
            }
        }
    }
    give(folder, {place.name, place.owner, place.owner}, place.mode);
    return names;
}

// What rm says, each of the cells being an item of its own.
std::string removeWithSystem(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        fs::current_path(folder);
        std::string command = "LC_ALL=C chmod -f u+rwx *-own*; LC_ALL=C exec rm -rf --";
        for (const auto& name : names) {
            command += " " + name;
        }
        FILE* said = ::popen((command + " 2>&1").c_str(), "r");
        std::string lines;
        for (char text[4096]; std::fgets(text, sizeof text, said) != nullptr;) {
            lines += text;
        }
        const int status = ::pclose(said);
        return WIFEXITED(status) && WEXITSTATUS(status) <= 1 ? lines : cannotTry("rm does not run: " + lines);
    });
}

// As the cells that stay were made: their modes are the numbers at the ends of their names.
void closeOwnAgain(const fs::path& folder) {
    for (const auto& cell : fs::directory_iterator(folder)) {
        const auto name = cell.path().filename().native();
        if (const auto own = name.find("-own"); own != std::string::npos) {
            fs::permissions(cell.path(), static_cast<fs::perms>(std::stoul(name.substr(own + 4))));
        }
    }
}

// The name of every item that is kept, and what rm would say of its failure, a line each.
std::string removeEach(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        std::string lines;
        for (const auto& name : names) {
            const auto outcome = files::remove(folder / name);
            if (outcome.end != RemovalEnd::gone) {
                const auto failure = outcome.failure.value_or(files::Failure{0, folder / "nothing"});
                const auto path = failure.path.lexically_relative(folder);
                lines += name + (*path.begin() == name ? "\n" : "\nof another item, ") + "rm: cannot remove '" +
                         path.native() + "': " + failure.text() + "\n";
            }
        }
        return lines;
    });
}

// The same cells for us and for rm, in one folder.
void compareIn(const fs::path& folder, const Place& place) {
    const auto names = makeCells(folder / "ours", place);
    (void)makeCells(folder / "theirs", place);
    const auto said = removeWithSystem(folder / "theirs", names);
    if (couldNotTry(said)) {
        GTEST_SKIP() << said;
    }
    closeOwnAgain(folder / "theirs");
    std::istringstream ours(removeEach(folder / "ours", names));
    EXPECT_EQ(fingerprint(folder / "ours"), fingerprint(folder / "theirs"));

    // Every reason is one of those that rm has for the same item.
    std::set<std::string> kept;
    for (std::string name, reason; std::getline(ours, name) && std::getline(ours, reason);) {
        kept.insert(name);
        EXPECT_NE(said.find(reason + "\n"), std::string::npos) << name << " is kept: " << reason;
    }
    for (const auto& name : names) {
        EXPECT_EQ(kept.contains(name), fs::exists(folder / "ours" / name)) << name;
    }
}

}  // namespace

TEST(PermissionMatrix, KeepsWhatRmKeepsAndSaysWhy) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "folders of several owners are for the administrator to make";
    }
    for (const auto& place : places) {
        SCOPED_TRACE(place.name);
        const TemporaryFolder folder(folderInMemory());
        fs::permissions(folder.path(), static_cast<fs::perms>(plain));
        compareIn(folder.path(), place);
    }
}

}  // namespace brimvault::tests
