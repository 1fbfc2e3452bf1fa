#include "files/trees/Measure.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <utility>
#include <vector>

#include "files/FileDescriptor.h"
#include "files/trees/MeasuredFolder.h"
#include "files/trees/SizeCalculation.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::HiddenEntries;
using files::MeasurableEntry;
using files::measureContents;
using files::measureItem;
using files::Sizes;

namespace {

void forEachShown(
    const fs::path& folder, const std::function<bool(const MeasurableEntry&)>& call,
    const std::function<Sizes(const char*)>& sizes = [](const char*) { return Sizes::wanted; }) {
    EXPECT_EQ(files::forEachMeasurable(folder, HiddenEntries::skip, {}, sizes, call), 0);
}

std::vector<std::string> listing(const fs::path& folder) {
    std::vector<std::string> names;
    (void)files::forEachChild(folder, HiddenEntries::skip, [&](const auto& entry) {
        names.emplace_back(entry.name);
        return true;
    });
    return names;
}

}  // namespace

TEST(Measure, SumsTheLengthsOfAllThatIsNoFolderAndFollowsNoLink) {
    const TemporaryFolder folder;
    writeFile(folder / "top/a", "12345");
    writeFile(folder / "top/.hidden/b", "1234567");
    writeFile(folder / "top/App.app/Contents/c", "123");
    fs::create_directories(folder / "top/empty/empty");
    fs::create_hard_link(folder / "top/a", folder / "top/second name");
    fs::create_hard_link(folder / "top/a", folder / "elsewhere");
    ASSERT_EQ(::mkfifo((folder / "top/pipe").c_str(), 0600), 0);  // who opens it waits for ever
    fs::create_directory_symlink("top", folder / "link");
    const std::pair<fs::path, std::uint64_t> sizes[] = {
        {"top", 20},
        {"top/", 20},
        {"top/a", 5},
        {"top/empty", 0},
        {"top/pipe", 0},
        {"missing", 0},
        {"top/a/below", 0},
        {"link", 3},
        {"link/", 3},
        {"link/App.app", 0},
        {"link/a", 0},
        {"links", makeLinks(folder / "links", folder / "outside")},
        {"links/to folder", (folder / "outside/folder").native().size()},
        {"loops", makeLoops(folder / "loops")},
        {"odd names", makeOddNames(folder / "odd names")},
    };
    for (const auto& [item, size] : sizes) {
        EXPECT_EQ(measureItem(folder / item), size) << item;
    }
    EXPECT_EQ(measureItem(""), 0U);
    EXPECT_EQ(measureContents(folder / "links").regularFiles, 5U);
    for (const char* noFolder : {"top/a", "links/to folder", "link/App.app", "missing"}) {
        EXPECT_EQ(measureContents(folder / noFolder).logical, 0U) << noFolder;
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(measureItem(folder / "top", stop.get_token()), 0U);
    EXPECT_EQ(measureContents(folder / "top", stop.get_token()).logical, 0U);
}

TEST(Measure, TellsLengthFromBytesOnDisk) {
    const TemporaryFolder folder;
    writeSparseFile(folder / "top/sparse", 6'000'000'000);
    writeFile(folder / "top/inner/full", std::string(100'000, 'x'));
    const auto statusOf = [&](const char* name) {
        struct stat status {};
        EXPECT_EQ(::stat((folder / name).c_str(), &status), 0);
        return status;
    };
    const auto onDisk =
        static_cast<std::uint64_t>(statusOf("top/sparse").st_blocks + statusOf("top/inner/full").st_blocks) * 512;
    const auto sizes = measureContents(folder / "top");
    EXPECT_EQ(sizes.logical, 6'000'100'000U);
    EXPECT_EQ(sizes.regularFiles, 6'000'100'000U);
    EXPECT_EQ(sizes.allocated, onDisk);
    EXPECT_LT(onDisk, 6'000'000'000U);
    EXPECT_EQ(sizes.folders, static_cast<std::uint64_t>(statusOf("top/inner").st_size));

    files::SizeCalculation calculation;
    files::Failure error;
    fs::create_directory(folder / "empty");
    fs::create_directory_symlink("top", folder / "link");
    const std::pair<const char*, std::uint64_t> runningTotals[] = {
        {"top", 6'000'100'000},  {"empty", 6'000'100'000}, {"missing", 0}, {"top/sparse", 0}, {"link", 0},
        {"top/sparse/inner", 0}, {"top", 12'000'200'000},
    };
    for (const auto& [name, total] : runningTotals) {
        EXPECT_EQ(calculation.getFolderSize(folder / name), total) << name;
    }
    EXPECT_EQ(calculation.fastFolderSizeOfItemWithPath(folder / "top"), onDisk);
    EXPECT_EQ(calculation.sizeForFolderAtPath(folder / "top", &error), onDisk);
    EXPECT_EQ(calculation.sizeForFolderAtPath(folder / "missing", &error), 0U);
    EXPECT_EQ(error.code, 0);
}

TEST(Measure, LeavesOutWhatMayNotBeRead) {
    const TemporaryFolder folder;
    makePermissions(folder / "permissions");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto size = measureItem(folder / "permissions");
        files::SizeCalculation calculation;
        const auto total = calculation.getFolderSize(folder / "permissions");
        const auto unreadable = calculation.getFolderSize(folder / "permissions/full");
        return size == 8 && total == 8 && unreadable == 0  // "open/gone" and "closed/kept"
                   ? ""
                   : "measured " + std::to_string(size) + ", " + std::to_string(total);
    });
}

// Helpers may still be at the folders whose sizes nobody asked for when the next are listed; ThreadSanitizer tells.
TEST(MeasuredFolder, TellsManyEntriesInTheOrderOfTheirInodesWithTheSizesThatAreAskedForUntilItIsEnough) {
    const TemporaryFolder folder(folderInMemory());
    for (int number = 0; number < 1500; ++number) {  // more than are listed together
        const auto name = std::to_string(number);
        writeFile(number % 3 == 0 ? folder / name : folder / name / "inner/file", name);
    }
    writeFile(folder / ".hidden", "123");
    auto names = listing(folder.path());
    const auto inode = [&](const std::string& name) { return files::statusOf(folder / name)->identity.inode; };
    std::sort(names.begin(), names.end(),
              [&](const auto& left, const auto& right) { return inode(left) < inode(right); });
    for (const std::size_t asked : {1U, 500U}) {  // each, and hardly any
        std::vector<std::string> told;
        forEachShown(folder.path(), [&](const MeasurableEntry& entry) {
            told.emplace_back(entry.name);
            EXPECT_TRUE(told.size() % asked != 0 || entry.findings().logical == told.back().size()) << entry.name;
            return told.size() < names.size();
        });
        EXPECT_EQ(told, names);
        names.resize(1490);
    }
}

// Who opens a folder is seen by those who watch it.
TEST(MeasuredFolder, DoesNotOpenFoldersWhoseSizesAreUnwanted) {
    const TemporaryFolder folder;
    const files::FileDescriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    for (int number = 0; number < 20; ++number) {
        writeFile(folder / std::to_string(number) / "file", "12345");
    }
    const auto names = listing(folder.path());
    const auto& wanted = names.back();  // the others come before it, and would be worked out before it
    for (const auto& name : names) {
        ASSERT_TRUE(name == wanted || ::inotify_add_watch(watch.number(), (folder / name).c_str(), IN_OPEN) >= 0);
    }
    std::size_t unwanted = 0;
    forEachShown(
        folder.path(),
        [&](const MeasurableEntry& entry) {
            const bool isWanted = entry.sizes == Sizes::wanted;
            unwanted += isWanted ? 0 : 1;
            EXPECT_TRUE(!isWanted || entry.findings().logical == 5);
            return true;
        },
        [&](const char* name) { return name == wanted ? Sizes::wanted : Sizes::unwanted; });
    EXPECT_EQ(unwanted, names.size() - 1);
    alignas(inotify_event) char events[4096];
    EXPECT_EQ(::read(watch.number(), events, sizeof events), -1);
    EXPECT_EQ(errno, EAGAIN);
}

}  // namespace brimvault::tests
