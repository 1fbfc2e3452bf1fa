// Mounts all over a tree that is large enough for several threads to be at work in it.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "files/trees/Remove.h"
#include "support/ChildProcess.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

constexpr int rounds = 5;

std::string mountOn(const fs::path& point, const fs::path& behind) {
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

bool isAtOrBelow(const fs::path& inner, const fs::path& outer) {
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

class LargeTreeWithMounts {
public:
    explicit LargeTreeWithMounts(const fs::path& folder) : tree_(folder / "tree"), behind_(folder / "behind") {
        constexpr int some = 3;
        fill(behind_, some);
        writeFile(behind_ / "file of its own", "precious");
        constexpr int many = 14;
        fill(tree_, many);
        constexpr int levels = 30;
        for (int level = 0; level < levels; ++level) {
            deep_ /= "inner";
        }
        writeFile(deep_ / "file", "12345");
    }

    // At places spread over the tree: memory, folders of the same device (one of them holds the tree) and a file.
    std::string mountAll() {
        const std::pair<fs::path, fs::path> mounts[] = {
            {tree_ / "0/0", {}},
            {tree_ / "7/3/inner", behind_},
            {tree_ / "7/4", behind_ / "1"},
            {tree_ / "9", behind_},
            {tree_ / "11/5/file", behind_ / "file of its own"},
            {tree_ / "13/13", tree_.parent_path()},
            {deep_, {}},
        };
        for (const auto& [point, behind] : mounts) {
            if (auto wrong = mountOn(point, behind); !wrong.empty()) {
                return wrong;
            }
            points_.insert(point);
            if (behind.empty()) {
                writeFile(point / "inner/on the mount", "precious");
            }
        }
        return {};
    }

    // What is wrong after its removal.
    [[nodiscard]] std::string remove() const {
        const auto before = contents();
        const auto outcome = files::remove(tree_);
        if (outcome.end != RemovalEnd::kept || !outcome.failure) {
            return "not kept";
        }
        const auto& failure = *outcome.failure;
        if (failure.code != EBUSY || !points_.contains(failure.path)) {
            return "blamed \"" + failure.text() + "\" of " + failure.path.native();
        }
        return contents() == before ? whatShouldHaveGone() : "what is mounted is not as it was";
    }

private:
    [[nodiscard]] std::vector<SampleHome::Fingerprint> contents() const {
        return {fingerprint(behind_), fingerprint(tree_ / "0/0"), fingerprint(deep_)};
    }

    // All but the points and the way to them.
    [[nodiscard]] std::string whatShouldHaveGone() const {
        for (auto entry = fs::recursive_directory_iterator(tree_); entry != fs::recursive_directory_iterator();
             ++entry) {
            const auto& path = entry->path();
            if (points_.contains(path)) {
                entry.disable_recursion_pending();
            } else if (std::none_of(points_.begin(), points_.end(),
                                    [&](const fs::path& point) { return isAtOrBelow(point, path); })) {
                return path.native() + " stayed";
            }
        }
        return {};
    }

    fs::path tree_;
    fs::path behind_;
    fs::path deep_ = tree_ / "deep";
    std::set<fs::path> points_;
};

}  // namespace

// More than once, as threads never meet in the same order.
TEST(MountsInLargeTree, KeepWhatTheyHoldWhileAllElseGoes) {
    for (int round = 0; round < rounds; ++round) {
        const TemporaryFolder folder(folderInMemory());
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            if (auto reason = keepMountsPrivate(); !reason.empty()) {
                return cannotTry(reason);
            }
            LargeTreeWithMounts large(folder.path());
            auto reason = large.mountAll();
            return reason.empty() ? large.remove() : reason;
        });
    }
}

}  // namespace brimvault::tests
