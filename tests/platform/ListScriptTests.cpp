#include "platform/ListScript.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <future>

#include "files/FileDescriptor.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace std::chrono_literals;

namespace {

using Entries = std::vector<std::string>;

// A killed process needs a moment.
bool endsSoon(pid_t process) {
    const files::FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0U)));
    pollfd end{handle.number(), POLLIN, 0};
    return process > 0 && (!handle.isOpen() || ::poll(&end, 1, 5000) == 1);
}

class ListScript : public testing::Test {
protected:
    ListScript() { EXPECT_EQ(::mkfifo(pipe_.c_str(), 0600), 0); }

    [[nodiscard]] std::optional<Entries> run(const std::string& script, std::chrono::milliseconds timeout = 24h) const {
        trial::writeFile(folder_ / "script", script);
        return platform::runListScript(QString::fromStdString(folder_ / "script"), timeout, stop_.get_token());
    }
    // The process that `startAndTell` starts.
    [[nodiscard]] std::future<pid_t> started() const {
        return std::async(std::launch::async, [this] {
            pid_t process = 0;
            std::ifstream(pipe_) >> process;
            return process;
        });
    }

    trial::TemporaryFolder folder_;
    std::stop_source stop_;
    const std::filesystem::path pipe_ = folder_ / "pipe";
    const std::string startAndTell_ = "sleep infinity & echo $! >'" + pipe_.native() + "'; printf 'told\\0half';";
};

}  // namespace

TEST_F(ListScript, AnswersWhatItPrintedUnlessItFailed) {
    const std::pair<const char*, std::optional<Entries>> examples[] = {
        {"printf 'a\\0\\0b c\\n\\0rest'", Entries{"a", "", "b c\n"}},
        {"printf rest", Entries()},
        {"exit 0", Entries()},
        {"printf 'a\\0'; exit 3", std::nullopt},
        {"printf 'a\\0'; kill -9 $$", std::nullopt},
        {"(syntax", std::nullopt},
    };
    for (const auto& [script, expected] : examples) {
        EXPECT_EQ(run(script), expected) << script;
    }
    EXPECT_EQ(platform::runListScript(QStringLiteral(":/scripts/none"), 24h, {}), std::nullopt);
}

TEST_F(ListScript, IsEndedAfterTheTimeoutWithAllThatItHasStarted) {
    for (const char* end : {"wait", "trap '' TERM INT HUP; while :; do :; done", "exec >&- 2>&-; wait"}) {
        auto process = started();
        EXPECT_EQ(run(startAndTell_ + end, 1s), Entries{"told"}) << end;
        EXPECT_TRUE(endsSoon(process.get())) << end;
    }
}

TEST_F(ListScript, IsEndedAtOnceWhenItIsStopped) {
    auto process = started();
    auto answer = std::async(std::launch::async, [&] { return run(startAndTell_ + "wait"); });
    const auto hanging = process.get();
    stop_.request_stop();
    EXPECT_EQ(answer.get(), std::nullopt);
    EXPECT_TRUE(endsSoon(hanging));
}

TEST_F(ListScript, IsEndedWhenItPrintsWithoutEnd) {
    EXPECT_EQ(run("head -c 70000000 /dev/zero | tr '\\0' x; sleep infinity"), std::nullopt);
}

TEST_F(ListScript, IsNotWaitedForOnceOnlyWhatItLeftBehindRuns) {
    auto process = started();
    EXPECT_EQ(run(startAndTell_), Entries{"told"});
    EXPECT_EQ(::kill(process.get(), SIGKILL), 0) << "it goes on by itself";
}

}  // namespace brimvault::tests
