// Logs that are still written to are emptied and not removed; and nothing else is.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "engine/removal/FileCleanOperations.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/WrittenFiles.h"
#include "support/FixtureTrees.h"
#include "support/LogWriter.h"
#include "support/OpenedElsewhere.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;

namespace {

struct AskedRemover final : PrivilegedRemover {
    bool removeFileAtPath(const fs::path& /*path*/, const Holder& /*folder*/) override {
        ++timesAsked;
        return false;
    }
    int timesAsked = 0;
};

class EmptiedLogs : public testing::Test {
protected:
    EmptiedLogs() {
        fs::create_directories(logs_);
        writeFile(precious_, "precious");
    }

    [[nodiscard]] std::shared_ptr<const FoundIn> folder() const {
        return std::make_shared<const FoundIn>(FoundIn{logs_.native() + "/", files::statusOf(logs_)->identity});
    }
    /// As a scan finds it; it has to exist.
    [[nodiscard]] std::shared_ptr<FFItem> found(const fs::path& log) const {
        auto item = FFItem::initWithPath(log, 1);
        item->setFoundIn(folder(), FFItem::FoundPathKind::folder);
        item->setIdentity(files::statusOf(log)->identity.digest());
        ItemDetails details;
        details.isEmptiedWhileWritten = true;
        item->setDetails(std::move(details));
        item->setPpbDeletable(true);
        return item;
    }
    /// What became of it in a clean.
    ItemOutcome clean(const std::shared_ptr<FFItem>& item) {
        ItemOutcome outcome;
        ItemArray removed;
        NotRemovedDictionary notRemoved;
        CLogsOperation operation({item}, remover_);
        operation.reportTo([&](const ItemOutcome& told) { outcome = told; });
        operation.removeItems({item}, std::nullopt, removed, notRemoved);
        EXPECT_EQ(removed.contains(item), outcome.gone);
        EXPECT_EQ(notRemoved.isEmpty(), outcome.gone);
        EXPECT_EQ(remover_.timesAsked, 0);
        return outcome;
    }
    [[nodiscard]] static bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path logs_ = home_ / ".local/state/app";
    const fs::path log_ = logs_ / "app.log";
    const fs::path precious_ = home_ / "Documents/precious";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    AskedRemover remover_;
};

}  // namespace

TEST_F(EmptiedLogs, AreTheSameFilesToWhichTheirWritersAppend) {
    const LogWriter writer(log_);
    const auto before = files::statusOf(log_);
    const auto outcome = clean(found(log_));
    EXPECT_TRUE(outcome.gone);
    EXPECT_EQ(outcome.emptied, 1);
    EXPECT_EQ(files::statusOf(log_)->size, 0U);
    EXPECT_TRUE(writer.writesOn());
    EXPECT_EQ(files::statusOf(log_)->identity, before->identity);
    EXPECT_EQ(contentOf(log_), LogWriter::line);
}

TEST_F(EmptiedLogs, GetTheirLengthBackButNotTheirBlocksFromAWriterThatDoesNotAppend) {
    constexpr std::uint64_t fewBlocks = 64UL * 1024;
    const LogWriter writer(log_, 0);
    EXPECT_GE(files::statusOf(log_)->allocated, LogWriter::written);
    EXPECT_EQ(clean(found(log_)).emptied, 1);
    EXPECT_TRUE(writer.writesOn());
    EXPECT_GT(files::statusOf(log_)->size, LogWriter::written);
    EXPECT_LT(files::statusOf(log_)->allocated, fewBlocks);
}

TEST_F(EmptiedLogs, AreNoneThatNobodyWritesTo) {
    const auto isRemoved = [this](const std::shared_ptr<FFItem>& item) {
        const auto outcome = clean(item);
        return outcome.gone && outcome.emptied == 0 && !isThere(log_);
    };
    writeFile(log_, "text");
    EXPECT_TRUE(isRemoved(found(log_)));
    writeFile(log_, "text");
    {
        const OpenedElsewhere reader(log_);
        EXPECT_TRUE(isRemoved(found(log_)));
    }
    {
        const LogWriter writer(log_);
        const auto unknown = found(log_);
        unknown->setIdentity(0);
        EXPECT_TRUE(isRemoved(unknown));
    }
    writeFile(log_, "text");
    const auto named = found(log_);
    fs::create_hard_link(log_, home_ / "second");
    EXPECT_EQ(clean(named).reason, ItemRemoval::replacedText());
    fs::remove(home_ / "second");
    const LogWriter writer(log_);
    const auto noLog = found(log_);
    noLog->setDetails({});
    EXPECT_TRUE(isRemoved(noLog));
}

TEST_F(EmptiedLogs, AreRefusedWhereSomethingElseHasTheirName) {
    const LogWriter writer(log_);
    const OpenedElsewhere preciousWriter(precious_, OpenedElsewhere::As::writtenFile);
    const auto item = found(log_);
    const std::vector<std::function<void()>> exchanges = {
        [&] { fs::create_symlink(precious_, log_); },
        [&] { fs::create_symlink("kept", log_); },
        [&] { fs::create_hard_link(precious_, log_); },
        [&] { ASSERT_EQ(::mkfifo(log_.c_str(), 0600), 0); },
        [&] { writeFile(log_, "another"); },
        [&] { writeFile(log_ / "file", "in a folder"); },
    };
    for (const auto& exchange : exchanges) {
        fs::rename(log_, logs_ / "kept");
        exchange();
        const auto before = fingerprint(folder_.path());
        const auto outcome = clean(item);
        EXPECT_EQ(outcome.reason, ItemRemoval::replacedText());
        EXPECT_EQ(outcome.emptied, 0);
        EXPECT_EQ(fingerprint(folder_.path()), before);
        fs::remove_all(log_);
        fs::rename(logs_ / "kept", log_);
    }
    fs::create_hard_link(log_, logs_ / "kept");
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(clean(item).reason, ItemRemoval::severalNamesText());
    EXPECT_EQ(fingerprint(folder_.path()), before);
}

TEST_F(EmptiedLogs, AreRefusedLikeWhatIsRemovedAndNobodyIsAskedForRights) {
    const LogWriter writer(log_);
    const auto item = found(log_);
    if (::getuid() == 0) {
        ASSERT_EQ(::lchown(log_.c_str(), 65534, 65534), 0);
        EXPECT_EQ(clean(item).reason, QString::fromStdString(std::generic_category().message(EPERM)));
        ASSERT_EQ(::lchown(log_.c_str(), 0, 0), 0);
    }
    {
        const SubstituteHome elsewhere(folder_ / "other home", {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}});
        EXPECT_EQ(clean(item).reason, ItemRemoval::outsideOfTrialText());
    }
    fs::rename(logs_, home_ / "old");
    fs::create_directories(logs_);
    fs::rename(home_ / "old/app.log", log_);
    EXPECT_EQ(clean(item).reason, ItemRemoval::exchangedText()) << "the very log, in another folder";
    EXPECT_EQ(fs::file_size(log_), LogWriter::written);
}

TEST_F(EmptiedLogs, AreThoseAmongTheTargetsOfAnItemToWhichAnybodyWrites) {
    const LogWriter writer(log_);
    const LogWriter other(logs_ / "other.log");
    const LogWriter exchanged(logs_ / "exchanged.log");
    writeFile(logs_ / "old.log", "text");
    auto item = found(log_);
    ItemTargets targets{folder(), {"exchanged.log", "app.log", "old.log", "other.log"}};
    for (const auto& name : targets.names) {
        targets.expected.push_back({.identity = files::statusOf(logs_ / name)->identity.digest()});
    }
    fs::rename(logs_ / "exchanged.log", logs_ / "kept");
    fs::create_symlink("kept", logs_ / "exchanged.log");
    ItemDetails details;
    details.isEmptiedWhileWritten = true;
    details.targets.push_back(targets);
    item->setDetails(std::move(details));
    const auto outcome = clean(item);
    EXPECT_FALSE(outcome.gone);
    EXPECT_EQ(outcome.reason, ItemRemoval::replacedText());
    EXPECT_EQ(outcome.emptied, 2);
    EXPECT_EQ(fs::file_size(log_), 0U);
    EXPECT_EQ(fs::file_size(logs_ / "other.log"), 0U);
    EXPECT_EQ(fs::file_size(logs_ / "kept"), LogWriter::written);
    EXPECT_FALSE(isThere(logs_ / "old.log"));
}

TEST(WrittenFilesTest, LooksAtTheProcessesAgainAfterAQuarterOfASecond) {
    WrittenFiles::Clock::time_point now;
    int looks = 0;
    WrittenFiles written(
        [&] {
            ++looks;
            return files::OpenFiles();
        },
        [&] { return now; });
    const auto looksAfter = [&](std::chrono::milliseconds wait) {
        now += wait;
        EXPECT_FALSE(written.isWritten({1, 2, {}}));
        return looks;
    };
    EXPECT_EQ(looksAfter({}), 1);
    EXPECT_EQ(looksAfter(WrittenFiles::maxAge), 1);
    EXPECT_EQ(looksAfter(std::chrono::milliseconds(1)), 2);
    EXPECT_EQ(looksAfter({}), 2);
}

}  // namespace brimvault::tests
