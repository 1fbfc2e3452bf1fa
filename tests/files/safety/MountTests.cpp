// Mounts: what they hold is neither measured nor removed.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cerrno>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "files/removal/Remove.h"
#include "files/trees/Measure.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::RemovalEnd;

namespace {

// Memory is mounted where nothing is given to be behind the mount. In a child process.
std::string mountOn(const fs::path& point, const fs::path& behind) {
    if (auto reason = keepMountsPrivate(); !reason.empty()) {
        return cannotTry(reason);
    }
    const int code = behind.empty() ? ::mount("none", point.c_str(), "tmpfs", 0, "size=1m")
                                    : ::mount(behind.c_str(), point.c_str(), nullptr, MS_BIND, nullptr);
    return code == 0 ? "" : cannotTry("mount: " + std::generic_category().message(errno));
}

// Folders of the same names everywhere, so that a step into a wrong one finds what it looks for.
void fill(const fs::path& tree, int width) {
    for (int outer = 0; outer < width; ++outer) {
        for (int inner = 0; inner < width; ++inner) {
            writeFile(tree / std::to_string(outer) / std::to_string(inner) / "inner/file", "12345");
            writeFile(tree / std::to_string(outer) / std::to_string(inner) / "file", "12345");
        }
    }
}

std::vector<SampleHome::Fingerprint> fingerprintsOf(const std::vector<fs::path>& folders) {
    std::vector<SampleHome::Fingerprint> all;
    for (const auto& folder : folders) {
        all.push_back(fingerprint(folder));
    }
    return all;
}

// The item and all that is in it, but nothing that is in the points.
std::set<fs::path> leftIn(const fs::path& item, const std::set<fs::path>& points) {
    std::set<fs::path> left = {item};
    if (fs::is_directory(item) && !points.contains(item)) {
        for (const auto& entry : fs::directory_iterator(item)) {
            left.merge(leftIn(entry, points));
        }
    }
    return left;
}

struct Mount {
    fs::path point;
    fs::path behind;  ///< empty: memory
};

// Mounts these in a tree, where hidden is what lay at the point. What is wrong with its size then, or after its
// removal.
std::string measureAndRemove(const fs::path& tree, const std::vector<Mount>& mounts) {
    auto size = sizeOf(tree);
    std::set<fs::path> points;
    std::set<fs::path> toStay;  // the points and the way to them
    std::vector<fs::path> mounted = {tree.parent_path() / "behind"};
    for (const auto& [point, behind] : mounts) {
        size -= sizeOf(point);
        if (auto wrong = mountOn(point, behind); !wrong.empty()) {
            return wrong;
        }
        points.insert(point);
        for (auto way = point; way != tree.parent_path(); way = way.parent_path()) {
            toStay.insert(way);
        }
        if (behind.empty()) {
            writeFile(point / "inner/on the mount", "precious");
            mounted.push_back(point);
        }
    }
    if (const auto measured = files::measureItem(tree); measured != size) {
        return "measured " + std::to_string(measured) + " instead of " + std::to_string(size);
    }
    const auto before = fingerprintsOf(mounted);
    const auto outcome = files::remove(tree);
    if (outcome.end != RemovalEnd::kept || !outcome.failure) {
        return "not kept";
    }
    if (outcome.failure->code != EBUSY || !points.contains(outcome.failure->path)) {
        return "blamed \"" + outcome.failure->text() + "\" of " + outcome.failure->path.native();
    }
    if (fingerprintsOf(mounted) != before) {
        return "what is mounted is not as it was";
    }
    return leftIn(tree, points) == toStay ? "" : "what is not on the way to a mount stayed";
}

}  // namespace

// At places spread over a tree that is large enough for several threads to be at work in it: memory, folders of the
// same device (one of them holds the tree) and a file. More than once, as threads never meet in the same order.
TEST(Mounts, InALargeTreeKeepWhatTheyHoldWhileAllElseGoes) {
    for (int round = 0; round < 5; ++round) {
        const TemporaryFolder folder(folderInMemory());
        const auto tree = folder / "tree";
        const auto behind = folder / "behind";
        fill(behind, 3);
        fill(tree, 14);
        makeDeep(tree / "deep", 30);
        auto deep = tree / "deep";
        for (int level = 0; level < 30; ++level) {
            deep /= "inner";
        }
        EXPECT_WELL_IN_CHILD([&] {
            return measureAndRemove(tree, {{tree / "0/0", {}},
                                           {tree / "7/3/inner", behind},
                                           {tree / "7/4", behind / "1"},
                                           {tree / "9", behind},
                                           {tree / "11/5/file", behind / "0/0/file"},
                                           {tree / "13/13", folder.path()},
                                           {deep, {}}});
        });
    }
}

TEST(Mounts, AreNothingAndStayAsItems) {
    for (const char* behind : {"", "behind", "behind/file"}) {
        SCOPED_TRACE(behind);
        const TemporaryFolder folder;
        writeFile(folder / "behind/file", "1234567");
        const bool isFile = fs::is_regular_file(folder / behind);
        const auto item = folder / (isFile ? "file" : "folder");
        writeFile(folder / "file", "");
        fs::create_directory(folder / "folder");
        EXPECT_WELL_IN_CHILD([&] {
            return measureAndRemove(item, {{item, *behind == '\0' ? fs::path() : folder / behind}});
        });
    }
}

}  // namespace brimvault::tests
