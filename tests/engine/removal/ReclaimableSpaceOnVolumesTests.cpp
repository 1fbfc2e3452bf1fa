// What items and their total promise to free, beside what a volume of its own has free after their removal.

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "engine/model/SharedSpace.h"
#include "files/removal/Remove.h"
#include "files/trees/Inspect.h"
#include "files/trees/Measure.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using namespace engine;

namespace {

bool runs(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

std::uint64_t freeOn(const fs::path& volume) {
    ::sync();
    struct statvfs figures {};
    return ::statvfs(volume.c_str(), &figures) == 0 ? figures.f_bfree * figures.f_frsize : 0;
}

constexpr std::uint64_t count = 60;
constexpr std::uint64_t folders = 300;

// Folders; files of a block or less up to some hundred, sparse ones, and ones with further names here or elsewhere.
void fill(const fs::path& item, std::initializer_list<fs::path> elsewhere) {
    for (std::uint64_t number = 0; number < folders; ++number) {
        fs::create_directories(item / "folders" / std::to_string(number));
    }
    for (std::uint64_t number = 0; number < count; ++number) {
        const auto name = item.filename().native() + std::to_string(number);
        const auto file = item / std::to_string(number % 7) / name;
        if (number % 5 == 0) {
            writeSparseFile(file, 10'000'000);
        } else {
            writeFile(file, std::string(number * number * 100, 'x'));
        }
        if (number % 4 == 0) {
            fs::create_hard_link(file, item / (name + " again"));
        }
        auto every = number;
        for (const auto& folder : elsewhere) {
            if (every++ % 3 == 0) {
                fs::create_hard_link(file, folder / name);
            }
        }
    }
}

// The rest lies in the blocks that a volume needs for its own tables.
bool isNear(std::uint64_t told, std::uint64_t freed) {
    constexpr std::uint64_t block = 4096;
    return (told < freed ? freed - told : told - freed) <= count * block;
}

struct OneItem {
    std::shared_ptr<FFItem> item;
    KnownItems found;
    std::uint64_t freed = 0;
};

OneItem foundAs(const fs::path& path, files::ReclaimableSpace space) {
    const auto item = FFItem::initWithPath(path, 1);
    item->setSpace(std::move(space));
    return {item, {{item}, Section::caches, {}, 1, false}};
}

// The bytes of what both share, and then of what the second one alone still holds.
std::uint64_t sharedBytes(const std::vector<KnownItems>& known) {
    const auto found = sharedGroups(0, known);
    return found->groups.empty() ? found->alone.empty() ? 0 : found->alone.front().second : found->groups.front().bytes;
}

std::string removeOneAfterTheOther(const fs::path& volume) {
    for (const char* name : {"one", "two", "elsewhere"}) {
        fs::create_directories(volume / name);
    }
    fill(volume / "one", {volume / "two", volume / "elsewhere"});
    fill(volume / "two", {volume / "elsewhere"});
    const auto folder = files::DirectoryHandle::open(volume);
    const files::InspectionContext context{folder->status()->mount, {}};
    OneItem items[] = {
        foundAs(volume / "one", files::measureSpace(volume / "one").space),
        foundAs(volume / "two", files::inspectEntry(*folder, {"two", files::NodeKind::directory}, context).space)};
    auto& [one, two] = items;
    const auto shared = sharedBytes({one.found, two.found});
    for (auto& item : items) {
        const auto before = freeOn(volume);
        if (files::remove(item.item->pfpath()).failure) {
            return "not removed";
        }
        item.freed = freeOn(volume) - before;
    }
    auto removed = one.found;
    removed.time = 2;
    removed.isRemoved = true;
    const auto together = one.item->frees() + two.item->frees() + shared;
    two.item->setFreesAlone(sharedBytes({two.found, removed}));
    const std::pair<std::uint64_t, std::uint64_t> figures[] = {
        {one.item->frees(), one.freed}, {two.item->frees(), two.freed}, {together, one.freed + two.freed}};
    std::string answer = shared > 1'000'000 ? "" : "nothing shared;";
    for (const auto& [told, freed] : figures) {
        answer += isNear(told, freed) ? "" : " " + std::to_string(told) + " instead of " + std::to_string(freed);
    }
    return answer;
}

class ReclaimableSpaceOn : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Volumes, ReclaimableSpaceOn, testing::Values("ext4", "xfs", "btrfs"),
                         [](const auto& made) { return std::string(made.param); });

}  // namespace

TEST_P(ReclaimableSpaceOn, IsWhatTheVolumeGains) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "volume");
    writeSparseFile(folder / "image", 400'000'000);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        const auto image = (folder / "image").native();
        const auto program = std::string("mkfs.") + GetParam();
        if (!runs("PATH=$PATH:/sbin:/usr/sbin command -v " + program)) {
            return cannotTry("there is no " + program);
        }
        const char* quietly = GetParam() == std::string("ext4") ? " -q -F " : " -q -f ";
        if (!runs("PATH=$PATH:/sbin:/usr/sbin " + program + quietly + image)) {
            return program + " failed";
        }
        if (auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto volume = folder / "volume";
        if (!runs("mount -o loop " + image + " " + volume.native())) {
            return cannotTry("no loop devices");
        }
        auto answer = removeOneAfterTheOther(volume);
        (void)runs("umount " + volume.native());
        return answer;
    });
}

}  // namespace brimvault::tests
