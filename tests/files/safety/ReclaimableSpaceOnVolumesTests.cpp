// What measuring promises to free, beside what a volume of its own has free after the removal.

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "files/removal/Remove.h"
#include "files/trees/Inspect.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

namespace {

bool runs(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

std::uint64_t freeOn(const fs::path& volume) {
    ::sync();
    struct statvfs figures {};
    return ::statvfs(volume.c_str(), &figures) == 0 ? figures.f_bfree * figures.f_frsize : 0;
}

constexpr int count = 60;

// Files of a block or less up to some hundred, sparse ones, ones with two names here, and ones with a name elsewhere.
void fill(const fs::path& item, const fs::path& elsewhere) {
    fs::create_directories(elsewhere);
    for (int number = 0; number < count; ++number) {
        const auto name = std::to_string(number);
        const auto file = item / std::to_string(number % 7) / name;
        if (number % 5 == 0) {
            writeSparseFile(file, 10'000'000);
        } else {
            writeFile(file, std::string(static_cast<std::size_t>(number * number) * 100, 'x'));
        }
        if (number % 4 == 0) {
            fs::create_hard_link(file, item / (name + " again"));
        }
        if (number % 6 == 0) {
            fs::create_hard_link(file, elsewhere / name);
        }
    }
}

std::string measureAndRemove(const fs::path& volume) {
    fill(volume / "item", volume / "elsewhere");
    const auto before = freeOn(volume);
    const auto folder = files::DirectoryHandle::open(volume);
    const auto found =
        files::inspectEntry(*folder, {"item", files::NodeKind::directory}, {folder->status()->mount, {}});
    if (files::remove(volume / "item").failure) {
        return "not removed";
    }
    const auto freed = freeOn(volume) - before;
    constexpr std::uint64_t block = 4096;
    const auto difference = freed < found.space.bytes ? found.space.bytes - freed : freed - found.space.bytes;
    const bool isRight = difference <= count * block && found.space.bytes > 4'000'000 && found.space.bytes < 6'000'000;
    return isRight ? ""
                   : std::to_string(found.space.bytes) + " instead of " + std::to_string(freed) + " of " +
                         std::to_string(found.logical);
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
        auto answer = measureAndRemove(volume);
        (void)runs("umount " + volume.native());
        return answer;
    });
}

}  // namespace brimvault::tests
