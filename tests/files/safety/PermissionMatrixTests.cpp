// Folders of every mode and of three owners, removed by a user without rights of his own: what goes is what GNU rm
// removes, and the reason is what stands in the way, not what follows from it.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "files/NodeStatus.h"
#include "files/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/TemporaryFolder.h"

namespace brimvault::tests {

using files::NodeKind;
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
};
constexpr Place places[] = {{"plain", user, plain}, {"sticky", stranger, sticky}, {"closed", stranger, plain}};

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

std::vector<std::string> cellNames() {
    std::vector<std::string> names;
    for (const auto& owner : owners) {
        for (unsigned mode = 0; mode < modes; ++mode) {
            names.push_back(owner.name + std::to_string(mode));
        }
    }
    return names;
}

void makeCells(const fs::path& folder, const Place& place) {
    fs::create_directories(folder);
    for (const auto& owner : owners) {
        for (unsigned mode = 0; mode < modes; ++mode) {
            makeCell(folder / (owner.name + std::to_string(mode)), owner, mode);
        }
    }
    give(folder, {place.name, place.owner, place.owner}, place.mode);
}

// Each of the cells is an item of its own to rm.
std::string removeWithSystem(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        fs::current_path(folder);
        std::vector<std::string> words = {"rm", "-rf", "--"};
        words.insert(words.end(), names.begin(), names.end());
        std::vector<char*> arguments;
        std::transform(words.begin(), words.end(), std::back_inserter(arguments),
                       [](std::string& word) { return word.data(); });
        arguments.push_back(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            (void)!std::freopen("/dev/null", "w", stderr);  // all that it could not remove
            ::execvp("rm", arguments.data());
            ::_exit(127);
        }
        int status = 0;
        const bool hasRun = ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) <= 1;
        return hasRun ? "" : cannotTry("there is no rm");
    });
}

// What stays of a folder, by relative path. To be looked at by the superuser.
std::map<fs::path, files::NodeStatus> leftIn(const fs::path& folder) {
    std::map<fs::path, files::NodeStatus> left;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        left.emplace(entry.path().lexically_relative(folder), *files::statusOf(entry.path()));
    }
    return left;
}

std::vector<std::string> namesOf(const std::map<fs::path, files::NodeStatus>& left) {
    std::vector<std::string> names;
    for (const auto& [path, status] : left) {
        names.push_back(path.native() + (status.kind == NodeKind::directory ? "/" : ""));
    }
    return names;
}

bool mayUser(const files::NodeStatus& folder, unsigned wanted) {
    const unsigned shift = folder.owner == user ? 6 : folder.group == user ? 3 : 0;
    return (folder.permissions >> shift & wanted) == wanted;
}
constexpr unsigned toRead = 4;
constexpr unsigned toChange = 3;

// Why the user may not take an entry out of a folder; 0 when he may.
int obstacleOf(const files::NodeStatus& entry, const files::NodeStatus& folder) {
    if (!mayUser(folder, toChange)) {
        return EACCES;
    }
    const bool isSticky = (folder.permissions & S_ISVTX) != 0;
    return isSticky && folder.owner != user && entry.owner != user ? EPERM : 0;
}

// Every reason for which something of a cell had to stay, computed from the rights of what has stayed.
std::map<fs::path, int> reasonsFor(const fs::path& cell, const std::map<fs::path, files::NodeStatus>& left,
                                   const files::NodeStatus& place) {
    std::map<fs::path, int> reasons;
    for (auto entry = left.find(cell); entry != left.end() && *entry->first.begin() == cell; ++entry) {
        const auto& [path, status] = *entry;
        const auto next = std::next(entry);
        const bool isFull = next != left.end() && next->first.parent_path() == path;
        if (isFull) {
            if (!mayUser(status, toRead)) {
                reasons[path] = EACCES;
            }
        } else if (const int code = obstacleOf(status, path == cell ? place : left.at(path.parent_path())); code != 0) {
            reasons[path] = code;
        }
    }
    return reasons;
}

// What each cell's removal answers: a code and a relative path, or nothing when it is said to be gone.
using Answers = std::map<std::string, std::pair<int, std::string>>;

std::string removeEach(const fs::path& folder, const std::vector<std::string>& names) {
    return inChildProcess([&]() -> std::string {
        becomeNobody();
        std::string lines;
        for (const auto& name : names) {
            const auto outcome = files::remove(folder / name);
            if (outcome.end == RemovalEnd::kept && outcome.failure) {
                lines += name + " " + std::to_string(outcome.failure->code) + " " +
                         outcome.failure->path.lexically_relative(folder).native() + "\n";
            } else if (outcome.end != RemovalEnd::gone || outcome.failure) {
                lines += name + " -1 -\n";
            }
        }
        return lines;
    });
}

Answers parsed(const std::string& lines) {
    Answers answers;
    std::istringstream stream(lines);
    std::string name;
    std::pair<int, std::string> answer;
    while (stream >> name >> answer.first >> answer.second) {
        answers[name] = answer;
    }
    return answers;
}

std::string inWords(const std::map<fs::path, int>& reasons) {
    std::string words;
    for (const auto& [path, code] : reasons) {
        words += path.native() + ": " + std::generic_category().message(code) + "; ";
    }
    return words.empty() ? "gone" : words;
}

class PermissionMatrix : public testing::TestWithParam<Place> {
protected:
    void SetUp() override {
        if (::getuid() != 0) {
            GTEST_SKIP() << "folders of several owners are for the administrator to make";
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Cells, PermissionMatrix, testing::ValuesIn(places),
                         [](const testing::TestParamInfo<Place>& place) { return std::string(place.param.name); });

}  // namespace

TEST_P(PermissionMatrix, KeepsWhatRmKeepsAndSaysWhy) {
    const TemporaryFolder folder(folderInMemory());
    fs::permissions(folder.path(), static_cast<fs::perms>(plain));
    const auto names = cellNames();
    makeCells(folder / "ours", GetParam());
    makeCells(folder / "theirs", GetParam());
    if (const auto wrong = removeWithSystem(folder / "theirs", names); !wrong.empty()) {
        GTEST_SKIP() << wrong;
    }
    const auto answers = parsed(removeEach(folder / "ours", names));

    const auto left = leftIn(folder / "ours");
    EXPECT_EQ(namesOf(left), namesOf(leftIn(folder / "theirs")));
    const auto place = *files::statusOf(folder / "ours");
    for (const auto& name : names) {
        const auto reasons = reasonsFor(name, left, place);
        const auto answer = answers.find(name);
        EXPECT_EQ(answer == answers.end(), !left.contains(name)) << name;
        if (answer != answers.end()) {
            const auto& [code, path] = answer->second;
            const auto reason = reasons.find(path);
            EXPECT_TRUE(reason != reasons.end() && reason->second == code)
                << name << " is kept for \"" << std::generic_category().message(code) << "\" of " << path
                << ", and the reasons are " << inWords(reasons);
        }
    }
}

}  // namespace brimvault::tests
