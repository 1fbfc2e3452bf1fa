// Folders of every mode and of three owners, removed by a user without rights of his own: what goes is what GNU rm
// removes, and the reason is what stands in the way, not what follows from it.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "files/trees/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

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

    friend void PrintTo(const Place& place, std::ostream* stream) { *stream << place.name; }
};
constexpr Place places[] = {{"plain", user, plain}, {"sticky", stranger, sticky}, {"closed", stranger, plain}};

// In the language of the tests, which is that of no language.
std::string textOf(int code) { return std::generic_category().message(code); }

void give(const fs::path& path, const Owner& owner, mode_t mode) {
    if (::lchown(path.c_str(), owner.owner, owner.group) != 0 || ::chmod(path.c_str(), mode) != 0) {
        throw std::system_error(errno, std::generic_category(), path.native());
    }
}

// A cell: a folder of this mode with a file, a full folder and an empty one in it, all of one owner.
void makeCell(const fs::path& cell, const Owner& owner, mode_t mode) {
    constexpr mode_t fileMode = 0644;
    for (const char* file : {"file", "full/file"}) {
        writeFile(cell / file, "");
        give(cell / file, owner, fileMode);
    }
    fs::create_directory(cell / "empty");
    give(cell / "empty", owner, plain);
    give(cell / "full", owner, plain);
    give(cell, owner, mode);
}

void makeEmptyCell(const fs::path& cell, const Owner& owner, mode_t mode) {
    fs::create_directory(cell);
    give(cell, owner, mode);
}

// A full cell and an empty one of every mode and owner. Their names.
std::vector<std::string> makeCells(const fs::path& folder, const Place& place) {
    fs::create_directories(folder);
    std::vector<std::string> names;
    for (const auto& owner : owners) {
        for (unsigned mode = 0; mode < modes; ++mode) {
            const auto name = owner.name + std::to_string(mode);
            makeCell(folder / name, owner, mode);
            makeEmptyCell(folder / ("empty-" + name), owner, mode);
            names.insert(names.end(), {name, "empty-" + name});
        }
    }
    give(folder, {place.name, place.owner, place.owner}, place.mode);
    return names;
}

// What is left of a folder, by relative path. To be looked at by the superuser.
std::vector<std::string> leftIn(const fs::path& folder) {
    std::vector<std::string> left;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const bool isFolder = entry.symlink_status().type() == fs::file_type::directory;
        left.push_back(entry.path().lexically_relative(folder).native() + (isFolder ? "/" : ""));
    }
    std::sort(left.begin(), left.end());
    return left;
}

// Relative paths that could not be removed, and why, in the system's words.
using Reasons = std::map<std::string, std::string>;

// To rm, each of the cells is an item of its own.
std::string removeWithSystem(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        fs::current_path(folder);
        std::string command = "LC_ALL=C exec rm -rf --";
        for (const auto& name : names) {
            command += " " + name;
        }
        FILE* said = ::popen((command + " 2>&1").c_str(), "r");
        std::string lines;
        char buffer[4096];
        for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, said)) > 0;) {
            lines.append(buffer, count);
        }
        const int status = ::pclose(said);
        return WIFEXITED(status) && WEXITSTATUS(status) <= 1 ? lines : cannotTry("rm does not run: " + lines);
    });
}

Reasons reasonsOfSystem(const std::string& lines) {
    Reasons reasons;
    const std::string start = "rm: cannot remove '";
    const std::string middle = "': ";
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        const auto end = line.find(middle);
        if (!line.starts_with(start) || end == std::string::npos) {
            ADD_FAILURE() << "rm says " << line;
            continue;
        }
        reasons[line.substr(start.size(), end - start.size())] = line.substr(end + middle.size());
    }
    return reasons;
}

// A line for every item that is kept: its name, the number of the reason and its relative path.
std::string removeEach(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        std::string lines;
        for (const auto& name : names) {
            const auto outcome = files::remove(folder / name);
            if (outcome.end != RemovalEnd::gone) {
                const auto failure = outcome.failure.value_or(files::Failure{0, "nothing"});
                lines += name + " " + std::to_string(failure.code) + " " +
                         failure.path.lexically_relative(folder).native() + "\n";
            }
        }
        return lines;
    });
}

class PermissionMatrix : public testing::TestWithParam<Place> {
protected:
    void SetUp() override {
        if (::getuid() != 0) {
            GTEST_SKIP() << "folders of several owners are for the administrator to make";
        }
        fs::permissions(folder_.path(), static_cast<fs::perms>(plain));
        names_ = makeCells(folder_ / "ours", GetParam());
        (void)makeCells(folder_ / "theirs", GetParam());
        theirs_ = removeWithSystem(folder_ / "theirs", names_);
        if (couldNotTry(theirs_)) {
            GTEST_SKIP() << theirs_;
        }
        ours_ = removeEach(folder_ / "ours", names_);
    }

    // Every reason is one of those that rm has for the same item.
    void expectReasons() const {
        const auto reasons = reasonsOfSystem(theirs_);
        std::set<std::string> kept;
        std::istringstream stream(ours_);
        std::string path;
        int code = 0;
        for (std::string name; stream >> name >> code >> path;) {
            kept.insert(name);
            const auto reason = reasons.find(path);
            const auto wanted = reason == reasons.end() ? "gone" : reason->second;
            EXPECT_TRUE(*fs::path(path).begin() == name && wanted == textOf(code))
                << name << " is kept for \"" << textOf(code) << "\" of " << path << ", which rm calls " << wanted;
        }
        for (const auto& name : names_) {
            EXPECT_EQ(kept.contains(name), fs::exists(folder_ / "ours" / name)) << name;
        }
    }

    const TemporaryFolder folder_{folderInMemory()};
    std::vector<std::string> names_;
    std::string ours_;    ///< what removals answered
    std::string theirs_;  ///< what rm said
};

INSTANTIATE_TEST_SUITE_P(Cells, PermissionMatrix, testing::ValuesIn(places),
                         [](const testing::TestParamInfo<Place>& place) { return std::string(place.param.name); });

}  // namespace

TEST_P(PermissionMatrix, KeepsWhatRmKeepsAndSaysWhy) {
    EXPECT_EQ(leftIn(folder_ / "ours"), leftIn(folder_ / "theirs"));
    expectReasons();
}

}  // namespace brimvault::tests
