// What stands in the way of a removal: missing rights, locks and other mounts.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "files/NodeStatus.h"
#include "files/trees/Measure.h"
#include "files/trees/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

// Nothing when the removal left the item with this failure, else what it did instead.
std::string keptWith(const files::RemovalOutcome& outcome, int code, const fs::path& path) {
    if (outcome.end != RemovalEnd::kept || !outcome.failure) {
        return "not kept";
    }
    const auto& failure = *outcome.failure;
    return failure.code == code && failure.path == path ? "" : failure.text() + " at " + failure.path.native();
}

// Locks a file against change for as long as it lives.
class ImmutableFile {
public:
    explicit ImmutableFile(const fs::path& file) : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        problem = change(true) ? 0 : errno;
    }
    ImmutableFile(const ImmutableFile&) = delete;
    ImmutableFile& operator=(const ImmutableFile&) = delete;
    ~ImmutableFile() {
        (void)change(false);
        ::close(descriptor_);
    }

    int problem = 0;  ///< why it could not be locked

private:
    [[nodiscard]] bool change(bool locked) const {
        int flags = 0;
        if (::ioctl(descriptor_, FS_IOC_GETFLAGS, &flags) != 0) {
            return false;
        }
        flags = locked ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        return ::ioctl(descriptor_, FS_IOC_SETFLAGS, &flags) == 0;
    }

    int descriptor_;
};

// A tree with a mount inside, in a namespace of the process's own; what is behind the mount is not to be touched.
std::string mountInside(const fs::path& tree, const fs::path& behind, bool asTemporaryFileSystem) {
    if (const auto reason = keepMountsPrivate(); !reason.empty()) {
        return cannotTry(reason);
    }
    const int code = asTemporaryFileSystem ? ::mount("none", tree.c_str(), "tmpfs", 0, "size=1m")
                                           : ::mount(behind.c_str(), tree.c_str(), nullptr, MS_BIND, nullptr);
    return code == 0 ? "" : cannotTry("mount: " + std::generic_category().message(errno));
}

}  // namespace

TEST(RemoveFailure, OfAFolderThatMayNotBeReadIsReportedUnlessItIsEmpty) {
    const TemporaryFolder folder;
    makePermissions(folder / "permissions");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        if (files::remove(folder / "permissions/empty").end != RemovalEnd::gone) {
            return "the empty one stayed";
        }
        return keptWith(files::remove(folder / "permissions/full"), EACCES, folder / "permissions/full");
    });
    EXPECT_FALSE(isThere(folder / "permissions/empty"));
    EXPECT_TRUE(isThere(folder / "permissions/full/kept"));
}

TEST(RemoveFailure, IsReportedWithItsPathWhileAllElseGoes) {
    const TemporaryFolder folder;
    makePermissions(folder / "tree");
    writeFile(folder / "tree/a/b/c", "");
    fs::permissions(folder / "tree/full", fs::perms::owner_all);
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        return keptWith(files::remove(folder / "tree"), EACCES, folder / "tree/closed/kept");
    });
    EXPECT_EQ(fingerprint(folder / "tree"),
              (SampleHome::Fingerprint{{"closed", "folder"}, {"closed/kept", "file of 4 bytes: kept"}}));
}

TEST(RemoveFailure, OfAnItemInAFolderThatMayNotBeChangedNamesTheItem) {
    const TemporaryFolder folder;
    makePermissions(folder / "tree");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        return keptWith(files::remove(folder / "tree/closed/kept"), EACCES, folder / "tree/closed/kept");
    });
}

TEST(RemoveFailure, OfALockedFileIsReportedWhileAllElseGoes) {
    const TemporaryFolder folder;
    writeFile(folder / "tree/inner/locked", "");
    writeFile(folder / "tree/inner/free", "");
    writeFile(folder / "tree/free", "");
    const ImmutableFile locked(folder / "tree/inner/locked");
    if (locked.problem != 0) {
        GTEST_SKIP() << "cannot lock a file here: " << std::generic_category().message(locked.problem);
    }
    EXPECT_TRUE(files::statusOf(folder / "tree/inner/locked")->immutable);
    EXPECT_EQ(keptWith(files::remove(folder / "tree"), EPERM, folder / "tree/inner/locked"), "");
    EXPECT_EQ(fingerprint(folder / "tree"),
              (SampleHome::Fingerprint{{"inner", "folder"}, {"inner/locked", "file of 0 bytes: "}}));
}

class MountInside : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(RemoveFailure, MountInside, testing::Bool(), [](const testing::TestParamInfo<bool>& kind) {
    return std::string(kind.param ? "TemporaryFileSystem" : "FolderOfTheSameDevice");
});

TEST_P(MountInside, IsNeitherMeasuredNorEmptied) {
    const TemporaryFolder folder;
    writeFile(folder / "behind/precious", "1234567");
    writeFile(folder / "tree/file", "12345");
    fs::create_directories(folder / "tree/inner/point");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        const auto point = folder / "tree/inner/point";
        if (auto reason = mountInside(point, folder / "behind", GetParam()); !reason.empty()) {
            return reason;
        }
        writeFile(point / "on the mount", "123456789");
        if (const auto size = files::measureItem(folder / "tree"); size != 5) {
            return "measured " + std::to_string(size);
        }
        if (const auto wrong = keptWith(files::remove(folder / "tree"), EBUSY, point); !wrong.empty()) {
            return wrong;
        }
        if (isThere(folder / "tree/file")) {
            return "what was beside it stayed";
        }
        return isThere(point / "on the mount") ? "" : "the mount was emptied";
    });
    EXPECT_TRUE(isThere(folder / "behind/precious"));
}

TEST_P(MountInside, IsRefusedAsTheItemItself) {
    const TemporaryFolder folder;
    writeFile(folder / "behind/precious", "1234567");
    fs::create_directories(folder / "point");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (auto reason = mountInside(folder / "point", folder / "behind", GetParam()); !reason.empty()) {
            return reason;
        }
        writeFile(folder / "point/on the mount", "123456789");
        if (const auto size = files::measureItem(folder / "point"); size != 0) {
            return "measured " + std::to_string(size);
        }
        if (const auto wrong = keptWith(files::remove(folder / "point"), EBUSY, folder / "point"); !wrong.empty()) {
            return wrong;
        }
        return isThere(folder / "point/on the mount") ? "" : "the mount was emptied";
    });
}

TEST(RemoveFailure, OfAFileThatIsAMountPointLeavesIt) {
    const TemporaryFolder folder;
    writeFile(folder / "behind", "1234567");
    writeFile(folder / "tree/point", "");
    writeFile(folder / "tree/file", "12345");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (auto reason = mountInside(folder / "tree/point", folder / "behind", false); !reason.empty()) {
            return reason;
        }
        if (const auto size = files::measureItem(folder / "tree"); size != 5) {
            return "measured " + std::to_string(size);
        }
        if (const auto size = files::measureItem(folder / "tree/point"); size != 0) {
            return "measured the point itself with " + std::to_string(size);
        }
        return keptWith(files::remove(folder / "tree"), EBUSY, folder / "tree/point");
    });
    EXPECT_EQ(fs::file_size(folder / "behind"), 7U);
}

TEST(Remove, WorksInsideAnotherMount) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "point");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (auto reason = mountInside(folder / "point", {}, true); !reason.empty()) {
            return reason;
        }
        writeFile(folder / "point/item/file", "12345");
        if (files::measureItem(folder / "point/item") != 5) {
            return "not measured";
        }
        return files::remove(folder / "point/item").end == RemovalEnd::gone ? "" : "kept";
    });
}

}  // namespace brimvault::tests
