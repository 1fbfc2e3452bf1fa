#include "files/removal/EmptyFile.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/NameExchange.h"
#include "support/OpenedElsewhere.h"

namespace brimvault::tests {

namespace {

class EmptyFile : public testing::Test {
protected:
    EmptyFile() { writeFile(log_, "what was logged"); }

    /// 0, or why the name in the folder was not emptied, as the file that the log was at first.
    [[nodiscard]] int codeOf(const char* name = "log") const {
        return files::emptyFileIn(*files::DirectoryHandle::open(parent_), name, identity_).code();
    }
    /// Makes something in the place of the log, which is kept beside it.
    template <typename Make>
    [[nodiscard]] int codeAfter(Make make) const {
        fs::rename(log_, parent_ / "kept");
        make();
        const int code = codeOf();
        fs::remove_all(log_);
        fs::rename(parent_ / "kept", log_);
        return code;
    }

    TemporaryFolder folder_{folderInMemory()};
    const fs::path parent_ = folder_ / "parent";
    const fs::path log_ = parent_ / "log";
    std::uint64_t identity_ = 0;

    void SetUp() override { identity_ = files::statusOf(log_)->identity.digest(); }
};

}  // namespace

TEST_F(EmptyFile, LeavesTheSameFileWithoutItsBlocks) {
    constexpr std::uint64_t size = 1024UL * 1024;
    fs::permissions(log_, fs::perms::owner_write);
    writeAllocatedFile(log_, size);
    const auto before = files::statusOf(log_);
    const auto emptied = files::emptyFileIn(*files::DirectoryHandle::open(parent_), "log", identity_);
    ASSERT_TRUE(emptied);
    EXPECT_EQ(emptied->before, before->allocated);
    EXPECT_GE(emptied->before, size);
    EXPECT_EQ(emptied->after, 0U);
    const auto after = files::statusOf(log_);
    EXPECT_EQ(after->identity, before->identity);
    EXPECT_EQ(after->permissions, before->permissions);
    EXPECT_EQ(after->size, 0U);
}

TEST_F(EmptyFile, TouchesNothingElseThatHasTheName) {
    writeFile(folder_ / "precious", "precious");
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(codeAfter([&] { writeFile(log_, "another"); }), ESTALE);
    EXPECT_EQ(codeAfter([&] { fs::create_symlink(folder_ / "precious", log_); }), ESTALE);
    EXPECT_EQ(codeAfter([&] { fs::create_symlink("kept", log_); }), ESTALE) << "it is reached by its own name alone";
    EXPECT_EQ(codeAfter([&] { fs::create_hard_link(folder_ / "precious", log_); }), ESTALE);
    EXPECT_EQ(codeAfter([&] { fs::create_hard_link(parent_ / "kept", log_); }), EMLINK);
    EXPECT_EQ(codeAfter([&] { fs::create_directory(log_); }), ESTALE);
    EXPECT_EQ(codeAfter([&] { ASSERT_EQ(::mkfifo(log_.c_str(), 0600), 0); }), ESTALE) << "and does not block";
    EXPECT_EQ(codeAfter([&] { makeSocket(log_); }), ESTALE);
    EXPECT_EQ(codeOf("missing"), ENOENT);
    EXPECT_EQ(fingerprint(folder_.path()), before);
    if (::getuid() == 0) {
        ASSERT_EQ(::lchown(log_.c_str(), 65534, 65534), 0);
        EXPECT_EQ(codeOf(), EPERM);
        ASSERT_EQ(::lchown(log_.c_str(), 0, 0), 0);
    }
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_EQ(codeOf(), 0);
}

TEST_F(EmptyFile, DoesNotGoOverToAnotherMount) {
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto problem = keepMountsPrivate(); !problem.empty()) {
            return cannotTry(problem);
        }
        if (::mount(log_.c_str(), log_.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return cannotTry("mount");
        }
        return codeOf() == EXDEV && contentOf(log_) == "what was logged" ? "" : "emptied";
    });
}

TEST_F(EmptyFile, NeverChangesAnotherFileThatIsExchangedWithItMeanwhile) {
    if (!exchangesNames(folder_.path())) {
        GTEST_SKIP() << "the file system exchanges no names";
    }
    constexpr int wantedExchanges = 20'000;
    constexpr int wantedAnswers = 100;
    writeFile(parent_ / "other", "precious");
    int emptied = 0;
    int refused = 0;
    {
        const Exchanger exchanger(log_, parent_ / "other");
        while (exchanger.exchanges() < wantedExchanges || emptied < wantedAnswers || refused < wantedAnswers) {
            const int code = codeOf();
            ASSERT_TRUE(code == 0 || code == ESTALE) << code;
            ++(code == 0 ? emptied : refused);
        }
    }
    const bool isExchanged = files::statusOf(log_)->identity.digest() != identity_;
    EXPECT_EQ(contentOf(isExchanged ? log_ : parent_ / "other"), "precious");
    EXPECT_EQ(contentOf(isExchanged ? parent_ / "other" : log_), "");
}

}  // namespace brimvault::tests
