#include "files/Volume.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include "files/OpenFiles.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/OpenedElsewhere.h"

namespace brimvault::tests {

using files::Volume;

TEST(VolumeTest, TellsWhatIsFreeOnTheVolumeThatItHolds) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "point");
    fs::create_directory_symlink("point", folder / "link");
    EXPECT_FALSE(Volume::of(folder / "link")) << "a link is not followed";
    EXPECT_FALSE(Volume::of(folder / "missing"));
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (auto problem = keepMountsPrivate(); !problem.empty()) {
            return problem;
        }
        if (::mount("none", (folder / "point").c_str(), "tmpfs", 0, "size=8m") != 0) {
            return cannotTry("no tmpfs can be mounted");
        }
        constexpr std::uint64_t size = 1UL << 20U;
        const auto volume = Volume::of(folder / "point");
        if (!volume || volume->device() != files::statusOf(folder / "point")->identity.device) {
            return "the volume cannot be held";
        }
        const auto before = volume->freeBytes();
        writeFile(folder / "point/file", std::string(size, 'x'));
        const auto filled = volume->freeBytes();
        fs::remove(folder / "point/file");
        volume->flush();
        return before != std::uint64_t{8U << 20U} ? "not all of an empty volume is free"
               : filled != *before - size         ? "a file does not count"
               : volume->freeBytes() != before    ? "a file that was removed still counts"
                                                  : "";
    });
}

TEST(RemovedFilesTest, NamesTheProgramThatHoldsThemOpenAndHowMuch) {
    const TemporaryFolder folder;
    writeFile(folder / "file", std::string(100'000, 'x'));
    writeFile(folder / "named", std::string(200'000, 'x'));
    const files::FileDescriptor file(::open((folder / "file").c_str(), O_RDONLY));
    ::fsync(file.number());  // the blocks are allocated
    const auto status = files::statusOf(folder / "file");
    const auto heldOn = [](std::uint64_t device) {
        std::uint64_t bytes = 0;
        for (const auto& held : files::removedFilesInUse({device})) {
            bytes += held.program == files::programName(::getpid()) ? held.allocated : 0;
        }
        return bytes;
    };
    {
        const OpenedElsewhere once(folder / "file");
        const OpenedElsewhere again(folder / "file");
        const OpenedElsewhere named(folder / "named");
        EXPECT_EQ(heldOn(status->identity.device), 0U) << "they still have names";
        fs::remove(folder / "file");
        EXPECT_EQ(heldOn(status->identity.device), status->allocated) << "once, however often it is open";
        EXPECT_EQ(heldOn(status->identity.device + 1), 0U) << "another volume";
    }
    EXPECT_EQ(heldOn(status->identity.device), 0U) << "what this process holds is no reason";
}

}  // namespace brimvault::tests
