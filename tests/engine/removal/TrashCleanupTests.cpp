#include "engine/removal/TrashCleanup.h"

#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "engine/removal/FileCleanOperations.h"
#include "engine/removal/ItemRemoval.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;
using namespace engine;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

class TrashCleaning : public testing::Test {
protected:
    TrashCleaning() { fs::create_directories(trash_); }

    fs::path makeTrashed(const std::string& name) const {
        writeFile(trash_ / "files" / name / "file", "12345");
        writeFile(recordOf(name), "[Trash Info]\nPath=/home/me/" + name + "\nDeletionDate=2024-05-01T12:00:00\n");
        return trash_ / "files" / name;
    }
    [[nodiscard]] fs::path recordOf(const std::string& name) const { return trash_ / "info" / (name + ".trashinfo"); }

    // By a clean of the section at that time.
    static void clean(const fs::path& path, TrashCleanup::Clock::time_point now) {
        const auto item = FFItem::initWithPath(path, 5);
        item->setPpbDeletable(true);
        const auto operation =
            std::make_shared<CTrOperation>(ItemArray{item}, PrivilegedRemover::none(), [now] { return now; });
        OperationQueue queue(1);
        queue.addOperation(operation);
        operation->waitUntilFinished();
    }

    /// What another program for the desktop's trash finds in it, and complains of.
    [[nodiscard]] std::string listedElsewhere() const {
        const auto command =
            "XDG_DATA_HOME='" + (home_ / ".local/share").native() + "' HOME='" + home_.native() + "' trash-list 2>&1";
        FILE* program = ::popen(command.c_str(), "r");
        std::string listed;
        for (char text[4096]; std::fgets(text, sizeof text, program) != nullptr;) {
            listed += text;
        }
        EXPECT_EQ(::pclose(program), 0) << listed;
        return listed;
    }

    const TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path trash_ = home_ / ".local/share/Trash";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
};

}  // namespace

TEST_F(TrashCleaning, TakesTheSizeOfARemovedFolderAlongAndNoOther) {
    const auto removed = makeTrashed("line\nb%r\xC3\xA9");
    const std::string foreign = "10 1700000000000 b\n";
    const std::string malformed = "10 b line%0Ab%25r%C3%A9\n70 1700000000000 %zz\n\n 1 2";
    const auto sizes = trash_ / "directorysizes";
    writeFile(sizes, foreign + "4096 1700000000000 line%0ab%25r%C3%A9\n" + malformed);
    fs::permissions(sizes, static_cast<fs::perms>(0640));
    writeFile(trash_ / ("directorysizes." + std::to_string(::getpid())), "left by a process that was killed");
    EXPECT_TRUE(removeItemAt(removed).gone);
    EXPECT_EQ(contentOf(sizes), foreign + malformed);
    EXPECT_EQ(fs::status(sizes).permissions(), static_cast<fs::perms>(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(trash_), fs::directory_iterator()), 3) << "no file of ours stays";

    const auto before = fs::last_write_time(sizes);
    EXPECT_TRUE(removeItemAt(makeTrashed("another")).gone);
    EXPECT_EQ(fs::last_write_time(sizes), before) << "nothing is to be changed";
    EXPECT_EQ(withoutSizesOf({"a", "c"}, "1 2 a\n1 2 b\n1 2 c"), "1 2 b\n");
}

TEST_F(TrashCleaning, ForgetsTheSizeOfAFolderThatStaysInPart) {
    EXPECT_WELL_IN_CHILD([this]() -> std::string {
        const auto item = makeTrashed("item");
        fs::create_directory(item / "mount");
        if (const auto reason = keepMountsPrivate();
            !reason.empty() || ::mount("none", (item / "mount").c_str(), "tmpfs", 0, nullptr) != 0) {
            return cannotTry("no mounts: " + reason);
        }
        writeFile(trash_ / "directorysizes", "5 1700000000000 item\n5 1700000000000 other\n");
        return removeItemAt(item).gone                                             ? "nothing is left"
               : fs::exists(item / "file")                                         ? "nothing went"
               : !fs::exists(recordOf("item"))                                     ? "the record went"
               : contentOf(trash_ / "directorysizes") != "5 1700000000000 other\n" ? "the size stays"
                                                                                   : "";
    });
}

TEST_F(TrashCleaning, MakesNoFileOfSizesAndFollowsNoLinkToOne) {
    EXPECT_TRUE(removeItemAt(makeTrashed("a")).gone);
    EXPECT_FALSE(fs::exists(trash_ / "directorysizes"));
    writeFile(home_ / "precious", "1 2 a\n");
    fs::create_symlink(home_ / "precious", trash_ / "directorysizes");
    EXPECT_TRUE(removeItemAt(makeTrashed("a")).gone);
    EXPECT_EQ(contentOf(home_ / "precious"), "1 2 a\n");
    EXPECT_TRUE(fs::is_symlink(trash_ / "directorysizes"));
}

TEST_F(TrashCleaning, LeavesTheRecordOfWhatWasTrashedUnderTheNameMeanwhile) {
    for (const bool hadRecord : {true, false}) {
        const auto item = makeTrashed("item");
        const auto record = hadRecord ? TrashCleanup::recordOf(item) : std::nullopt;
        fs::rename(recordOf("item"), folder_ / "moved");
        writeFile(recordOf("item"), "another");
        TrashCleanup().onRemoved(item, record);
        EXPECT_TRUE(fs::exists(recordOf("item")));
    }
}

TEST_F(TrashCleaning, TakesOldRecordsWithoutAnItemAlong) {
    const auto now = TrashCleanup::Clock::now();
    const auto other = folder_ / "root/volume" / (".Trash-" + std::to_string(::getuid()));
    for (const auto& record : {recordOf("orphan"), recordOf(".hidden"), other / "info/orphan.trashinfo"}) {
        writeFile(record, "[Trash Info]\n");
    }
    writeFile(trash_ / "info/orphan.folder.trashinfo/file", "");
    writeFile(trash_ / "info/notes.txt", "");
    writeFile(trash_ / "info/.trashinfo", "");
    fs::create_symlink("notes.txt", trash_ / "info/link.trashinfo");
    (void)makeTrashed("kept");
    fs::create_symlink("nowhere", trash_ / "files/dangling");
    writeFile(recordOf("dangling"), "[Trash Info]\n");

    clean(makeTrashed("young"), now + 23h);
    EXPECT_TRUE(fs::exists(recordOf("orphan")));
    auto expected = fingerprint(folder_.path());
    expected.erase((trash_ / "info/orphan.trashinfo").lexically_relative(folder_.path()));
    expected.erase((trash_ / "info/.hidden.trashinfo").lexically_relative(folder_.path()));
    EXPECT_TRUE(removeItemAt(makeTrashed("single")).gone);
    EXPECT_TRUE(fs::exists(recordOf("orphan"))) << "only a clean of the Trash looks for them";
    clean(makeTrashed("old"), now + 25h);
    EXPECT_EQ(fingerprint(folder_.path()), expected);
}

TEST_F(TrashCleaning, KeepsTheFoldersOfWhichATrashConsists) {
    const auto user = std::to_string(::getuid());
    for (const auto& trash : {trash_, home_ / "snap/app/common/.local/share/Trash", home_ / ".var/app/a.b/data/Trash",
                              home_ / ".var/app/a.b/.local/share/Trash", folder_ / "root/.Trash" / user}) {
        for (const char* part : {"files", "info", "expunged"}) {
            writeFile(trash / part / "item/file", "12345");
            EXPECT_FALSE(removeItemAt(trash / part).gone) << trash / part;
            EXPECT_TRUE(removeItemAt(trash / part / "item").gone) << trash / part;
            EXPECT_TRUE(fs::exists(trash / part));
        }
    }
    writeFile(home_ / "Downloads/Trash/files/item", "12345");
    EXPECT_TRUE(removeItemAt(home_ / "Downloads/Trash/files").gone);
}

// The item is an empty folder, so that the first file to go is its record; the system ends the process there.
TEST_F(TrashCleaning, LeavesATrashThatReadsWellWhenItIsKilledAfterTheItem) {
    fs::create_directory(trash_ / "files");
    fs::create_directory(trash_ / "files/item");
    writeFile(recordOf("item"), "[Trash Info]\nPath=/home/me/item\nDeletionDate=2024-05-01T12:00:00\n");
    (void)makeTrashed("other");
    const auto answer = inChildProcess([&]() -> std::string {
        sock_filter filter[] = {
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_unlinkat, 0, 3),
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 0, 1),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        };
        const sock_fprog program{std::size(filter), filter};
        if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
            ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
            return cannotTry("no system call can be made deadly here");
        }
        (void)removeItemAt(trash_ / "files/item");
        return "not killed";
    });
    if (couldNotTry(answer)) {
        GTEST_SKIP() << answer;
    }
    EXPECT_THAT(answer, testing::HasSubstr("broke off"));
    EXPECT_FALSE(fs::exists(trash_ / "files/item"));
    EXPECT_TRUE(fs::exists(recordOf("item")));
    if (std::system("command -v trash-list >/dev/null") != 0) {
        GTEST_SKIP() << "there is no trash-list";
    }
    using testing::HasSubstr;
    using testing::Not;
    const auto both = listedElsewhere();
    EXPECT_THAT(both, testing::AllOf(HasSubstr("/home/me/item"), HasSubstr("/home/me/other")));
    clean(makeTrashed("third"), TrashCleanup::Clock::now() + 25h);
    EXPECT_THAT(listedElsewhere(), testing::AllOf(HasSubstr("/home/me/other"), Not(HasSubstr("/home/me/item"))));
}

}  // namespace brimvault::tests
