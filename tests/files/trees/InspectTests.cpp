#include "files/trees/Inspect.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

#include "files/FileDescriptor.h"
#include "files/trees/Measure.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/OpenedElsewhere.h"

namespace brimvault::tests {

namespace {

using files::ItemFindings;

ItemFindings inspect(const fs::path& item, const files::OpenFiles& open = {}) {
    const auto folder = files::DirectoryHandle::open(item.parent_path());
    const auto status = files::statusOf(item);
    return folder && status
               ? files::inspectEntry(*folder, {item.c_str() + item.parent_path().native().size() + 1, status->kind},
                                     {folder->status()->mount, open})
               : ItemFindings{};
}

}  // namespace

TEST(Inspect, RecognizesWorkingCopiesByWhatTheyHold) {
    const TemporaryFolder folder;
    const auto isCopy = [&](const char* mark) {
        fs::remove_all(folder / "item");
        writeFile(folder / "item" / mark, "gitdir: /elsewhere");
        return inspect(folder / "item").holdsWorkingCopy;
    };
    for (const char* mark : {".git/HEAD", "a/.git/HEAD", "a/b/c/d/e/f/.git/HEAD", "a/.hg/store/x", "a/.svn/wc.db",
                             "a/.bzr/branch-format", "a/.jj/repo/x", "a/.git"}) {
        EXPECT_TRUE(isCopy(mark)) << mark;
    }
    for (const char* other : {"a/.git/config", "a/git/HEAD", "a/.gitignore", "a/.hg/x", "a/.svn/x", "HEAD", ".hg"}) {
        EXPECT_FALSE(isCopy(other)) << other;
    }
    writeFile(folder / "item" / ".git", "no link");
    EXPECT_FALSE(inspect(folder / "item").holdsWorkingCopy);
    writeFile(folder / ".git/HEAD", "ref");
    EXPECT_TRUE(inspect(folder / ".git").holdsWorkingCopy) << "the entry itself";
}

TEST(Inspect, TellsSocketsSpecialFilesSharedOnesAndTheLastChange) {
    const TemporaryFolder folder;
    const auto item = folder / "item";
    writeFile(item / "a/once", "12345");
    writeFile(item / "a/twice", "123");
    fs::create_hard_link(item / "a/twice", folder / "elsewhere");
    fs::create_symlink("target", item / "link");
    auto found = inspect(item);
    EXPECT_EQ(found.logical, files::measureItem(item));
    EXPECT_EQ(found.space.shared.size(), 1U);
    EXPECT_FALSE(found.isSpecial || found.holdsSocket || found.holdsMount || found.holdsWorkingCopy || found.isForeign);

    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(48);
    for (const auto& path : {item / "a/once", item / "a/twice", item / "a", item}) {
        fs::last_write_time(path, old);
    }
    const auto now = std::chrono::system_clock::now();
    EXPECT_LT(inspect(item).changed, now - std::chrono::hours(47));
    fs::last_write_time(item / "a/once", fs::file_time_type::clock::now());
    EXPECT_GT(inspect(item).changed, now - std::chrono::hours(1));

    makeSocket(item / "a/socket");
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_TRUE(inspect(item).holdsSocket);
    EXPECT_FALSE(inspect(item).isSpecial);
    EXPECT_TRUE(inspect(folder / "fifo").isSpecial);
    EXPECT_FALSE(inspect(folder / "fifo").holdsSocket);
    EXPECT_TRUE(inspect(item / "a/socket").isSpecial);
}

TEST(Inspect, TellsWhatAnotherProcessHoldsOpen) {
    const TemporaryFolder folder;
    writeFile(folder / "file/a/b/held", "12345");
    writeFile(folder / "folder/held/x", "12345");
    writeFile(folder / "free/x", "12345");
    fs::create_directory(folder / "program");
    const auto openBy = [&](const char* item) { return inspect(folder / item, files::OpenFiles::now()).openBy; };
    {
        const OpenedElsewhere ofFile(folder / "file/a/b/held");
        const OpenedElsewhere ofFolder(folder / "folder/held");
        EXPECT_EQ(openBy("file"), ofFile.process());
        EXPECT_EQ(openBy("folder"), ofFolder.process());
        EXPECT_EQ(openBy("free"), 0);
        EXPECT_TRUE(files::isRunning(ofFile.process()));
        EXPECT_FALSE(files::programName(ofFile.process()).empty());
    }
    EXPECT_EQ(openBy("file"), 0);
    {
        const OpenedElsewhere works(folder / "free", OpenedElsewhere::As::workingFolder);
        EXPECT_EQ(openBy("free"), works.process());
    }
    fs::copy_file("/bin/sleep", folder / "program/sleep");
    {
        const OpenedElsewhere runs(folder / "program/sleep", OpenedElsewhere::As::program);
        EXPECT_EQ(openBy("program"), runs.process());
    }
    const files::FileDescriptor own(::open((folder / "free/x").c_str(), O_RDONLY));
    EXPECT_EQ(openBy("free"), 0) << "what this process holds is no reason";
}

TEST(Inspect, TellsAMountInsideAndOneThatTheItemIs) {
    const TemporaryFolder folder;
    writeFile(folder / "holds/a/point/x", "1");
    writeFile(folder / "is/x", "1");
    writeFile(folder / "none/x", "1");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (auto problem = keepMountsPrivate(); !problem.empty()) {
            return problem;
        }
        for (const auto& point : {folder / "holds/a/point", folder / "is"}) {
            if (::mount("none", point.c_str(), "tmpfs", 0, "size=1m") != 0) {
                return cannotTry("no tmpfs can be mounted");
            }
        }
        return !inspect(folder / "holds").holdsMount ? "a mount inside was not seen"
               : !inspect(folder / "is").holdsMount  ? "a mount point was not seen"
               : inspect(folder / "none").holdsMount ? "a mount was seen where none is"
                                                     : "";
    });
}

TEST(Inspect, TakesAFolderForACacheByTheTagsSignature) {
    const TemporaryFolder folder;
    const auto isTagged = [&](const char* content) {
        writeFile(folder / "CACHEDIR.TAG", content);
        return files::isTaggedAsCache(*files::DirectoryHandle::open(folder.path()));
    };
    EXPECT_TRUE(isTagged("Signature: 8a477f597d28d172789f06886806bc55\n# more"));
    EXPECT_FALSE(isTagged("Signature: 8a477f597d28d172789f06886806bc5"));
    EXPECT_FALSE(isTagged(" Signature: 8a477f597d28d172789f06886806bc55"));
    fs::rename(folder / "CACHEDIR.TAG", folder / "other");
    fs::create_symlink("other", folder / "CACHEDIR.TAG");
    EXPECT_FALSE(files::isTaggedAsCache(*files::DirectoryHandle::open(folder.path()))) << "a link is not followed";
}

TEST(Inspect, TellsThatThereIsMoreThanCanBeSeen) {
    const TemporaryFolder folder;
    writeFile(folder / "open/a/x", "1");
    writeFile(folder / "holds/a/b/x", "1");
    writeFile(folder / "is/x", "1");
    writeFile(folder / "deep/a/b/x", "1");
    giveToNobody(folder.path());
    ASSERT_EQ(::chown((folder / "deep/a/b").c_str(), ::geteuid(), ::getegid()), 0);
    fs::permissions(folder / "holds/a/b", fs::perms::none);
    fs::permissions(folder / "is", fs::perms::owner_exec);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        return !inspect(folder / "holds").holdsUnseen ? "a closed folder inside was not seen"
               : !inspect(folder / "is").holdsUnseen  ? "a closed folder was not seen"
               : inspect(folder / "open").holdsUnseen ? "an open folder counts as closed"
               : inspect(folder / "is").isForeign     ? "one's own counts as another's"
               : !inspect(folder / "deep").isForeign  ? "another user's folder inside was not seen"
                                                      : "";
    });
    fs::permissions(folder / "holds/a/b", fs::perms::owner_all);
}

}  // namespace brimvault::tests
