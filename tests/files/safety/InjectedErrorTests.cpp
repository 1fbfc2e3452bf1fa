// Every system call of a removal fails in turn. Whatever the removal makes of it: it ends, calls nothing gone that is
// still there, blames the error that there was, and touches nothing but its item.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "files/removal/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::RemovalEnd;

namespace {

constexpr unsigned maxSeconds = 20;  // a removal of some hundred folders takes a second under strace

using Preparation = std::function<std::string()>;  // answers what went wrong

// In the child: stops until strace has attached to it.
[[noreturn]] void removeWhenContinued(const fs::path& item, int answer, const Preparation& prepare) {
    if (prepare && !prepare().empty()) {
        ::_exit(1);
    }
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);  // where only parents may trace
    ::alarm(maxSeconds);
    ::raise(SIGSTOP);
    const auto outcome = files::remove(item);
    const auto failure = outcome.failure.value_or(files::Failure());
    const auto said = std::to_string(static_cast<int>(outcome.end)) + " " + std::to_string(failure.code) + " " +
                      failure.path.native();
    (void)!::write(answer, said.data(), said.size());
    ::_exit(0);
}

files::RemovalOutcome outcomeIn(int answer) {
    char said[4096] = {};
    (void)!::pread(answer, said, sizeof said - 1, 0);
    int end = 0;
    int code = 0;
    int length = 0;
    (void)std::sscanf(said, "%d %d %n", &end, &code, &length);
    const auto failure = code == 0 ? std::nullopt : std::optional(files::Failure{code, said + length});
    return {static_cast<RemovalEnd>(end), failure};
}

// A removal by a child process, under strace from the first system call of its work to the last.
struct TracedRemoval {
    bool isTraced = false;                         ///< false: strace is missing or may not trace, `trace` says why
    std::optional<files::RemovalOutcome> outcome;  ///< none when the child did not end by itself
    int status = 0;                                ///< with which the child ended, as waitpid has it
    std::string trace;                             ///< what strace wrote
};

// The options say what strace traces and injects; the child prepares itself before. Called while the test has no other
// threads.
TracedRemoval removeTraced(const fs::path& item, const std::string& options, const Preparation& prepare = {}) {
    TracedRemoval result;
    std::FILE* answer = std::tmpfile();
    const pid_t child = ::fork();
    if (child == 0) {
        removeWhenContinued(item, ::fileno(answer), prepare);
    }
    ::waitpid(child, &result.status, WUNTRACED);
    const auto command = "exec strace -f -o /dev/stdout -p " + std::to_string(child) + " " + options + " 2>&1";
    std::FILE* strace = ::popen(command.c_str(), "r");
    for (char text[4096]; std::fgets(text, sizeof text, strace) != nullptr;) {
        result.trace += text;
        if (!result.isTraced && result.trace.find(" attached") != std::string::npos) {
            result.isTraced = true;
            ::kill(child, SIGCONT);
        }
    }
    ::pclose(strace);
    if (!result.isTraced) {
        ::kill(child, SIGKILL);
    }
    ::waitpid(child, &result.status, 0);
    if (WIFEXITED(result.status) && WEXITSTATUS(result.status) == 0) {
        result.outcome = outcomeIn(::fileno(answer));
    }
    std::fclose(answer);
    return result;
}

struct InjectedError {
    const char* name;
    int code;
    bool lasts;  ///< given at every call from each on, too: is it tried again for ever, is it passed over
};
constexpr InjectedError errors[] = {
    {"EIO", EIO, false},     {"EACCES", EACCES, true},  {"EPERM", EPERM, false},
    {"EROFS", EROFS, false}, {"ENOSPC", ENOSPC, false}, {"EMFILE", EMFILE, false},
    {"EBUSY", EBUSY, false}, {"EINTR", EINTR, true},    {"ESTALE", ESTALE, false},
};

// Not the removal's work on files: its memory, the answer, and the pipes with which sanitizers look at memory.
const std::set<std::string, std::less<>> notInjected = {"mmap", "pipe2", "write"};

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

// By name, the most calls that any one thread made: strace counts for each thread from one on.
using Calls = std::map<std::string, int>;

Calls callsIn(const std::string& trace) {
    Calls most;
    std::map<std::pair<std::string, std::string>, int> callsOfThreads;
    std::istringstream lines(trace);
    for (std::string thread, call; lines >> thread >> call; lines.ignore(65536, '\n')) {
        const std::string name = call.substr(0, call.find('('));
        if (name.size() < call.size() && call[0] != '<' && !notInjected.contains(name)) {
            most[name] = std::max(most[name], ++callsOfThreads[{name, thread}]);
        }
    }
    return most;
}

// The calls that were answered with an error.
std::vector<std::string> struckIn(const std::string& trace) {
    std::vector<std::string> struck;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("(INJECTED)") != std::string::npos) {
            struck.push_back(line);
        }
    }
    return struck;
}

using Making = std::function<void()>;

class InjectedErrors : public testing::Test {
protected:
    void SetUp() override {
        // What the tree is linked with, and what lies beside it with the names of what is in it.
        for (const char* file : {"outside/file", "outside/inner/file", "inner/file"}) {
            writeFile(folder_ / file, "precious");
        }
        before_ = fingerprint(folder_.path(), {"tree"});
    }
    // Where calls were found, errors have struck; else nothing was tested.
    void TearDown() override {
        if (!untried_.empty()) {
            GTEST_SKIP() << "nothing can be traced here: " << untried_;
        }
        EXPECT_EQ(struck_ > 0, tried_ > 0);
    }

    void makeLinksIn(const fs::path& folder) const {
        fs::create_directory_symlink(folder_ / "outside", folder / "link");
        fs::create_hard_link(folder_ / "outside/file", folder / "second name");
    }

    void makeSmallTree() const {
        for (const char* file : {"file", "inner/file", "inner/more/file"}) {
            writeFile(tree_ / file, "1");
        }
        makeLinksIn(tree_);
        fs::create_directory(tree_ / "empty");
    }

    // Wide and deep enough for several threads to be at work in it, and for folders to be closed on the way.
    void makeLargeTree() const {
        for (int number = 0; number < 150; ++number) {
            writeFile(tree_ / std::to_string(number % 12) / std::to_string(number) / "inner/file", "1");
        }
        makeDeep(tree_ / "deep", 30);
        makeLinksIn(tree_ / "7");
    }

    TracedRemoval trace(const std::string& options) {
        auto traced = removeTraced(tree_, options);
        untried_ = traced.isTraced ? "" : traced.trace;
        return traced;
    }

    // The calls of a removal in which nothing fails. None where nothing can be traced.
    Calls callsOfRemoval(const Making& make) {
        make();
        const auto traced = trace("--trace=%file,%desc");
        if (!traced.isTraced) {
            return {};
        }
        EXPECT_TRUE(traced.outcome && traced.outcome->end == RemovalEnd::gone && !traced.outcome->failure);
        EXPECT_FALSE(isThere(tree_)) << traced.trace;
        EXPECT_NE(callsIn(traced.trace), Calls()) << "nothing was seen of the removal";
        return callsIn(traced.trace);
    }

    // What is wrong with what came of it.
    [[nodiscard]] std::string judge(const files::RemovalOutcome& outcome, int code) const {
        if (outcome.end == RemovalEnd::gone) {
            return isThere(tree_) || outcome.failure ? "called gone what is still there" : "";
        }
        if (outcome.end != RemovalEnd::kept || !outcome.failure) {
            return "neither gone nor kept for a reason";
        }
        const auto& failure = *outcome.failure;
        const bool isTheReason = failure.code == code;
        const bool isThePlace =
            failure.path.native().starts_with(tree_.native()) && (!isThere(tree_) || isThere(failure.path));
        return isTheReason && isThePlace ? "" : "blamed \"" + failure.text() + "\" of " + failure.path.native();
    }

    // Of entries that could not be removed there are as many as were kept from it, and one of them is blamed.
    void expectNoMoreLeftThanFailed(const TracedRemoval& traced) const {
        std::set<fs::path> left;
        if (isThere(tree_)) {
            left.insert(tree_);
            for (const auto& entry : fs::recursive_directory_iterator(tree_)) {
                left.erase(entry.path().parent_path());
                left.insert(entry.path());
            }
        }
        EXPECT_LE(left.size(), struckIn(traced.trace).size());
        if (!left.empty() && traced.outcome->failure) {
            EXPECT_TRUE(left.contains(traced.outcome->failure->path)) << traced.outcome->failure->path;
        }
    }

    // `when` as strace takes it: the how-many-eth call of its name, or from which on.
    void tryWith(const Making& make, const std::string& call, const InjectedError& error, const std::string& when) {
        removeTree(tree_);
        make();
        const auto traced = trace("--trace=" + call + " --inject=" + call + ":error=" + error.name + ":when=" + when);
        const auto struck = struckIn(traced.trace);
        SCOPED_TRACE(call + " number " + when + " answers " + error.name + "\n" +
                     (struck.empty() ? "" : struck.back()));
        ASSERT_TRUE(traced.outcome) << "did not end well, but with status " << traced.status;
        struck_ += struck.empty() ? 0 : 1;
        ++tried_;
        EXPECT_EQ(judge(*traced.outcome, error.code), "");
        EXPECT_EQ(fingerprint(folder_.path(), {"tree"}), before_);
        if (call == "unlinkat") {
            expectNoMoreLeftThanFailed(traced);
        }
    }

    // At these of the calls of each name. Not every error in every place, which would take minutes: they take turns.
    void tryInTurn(const Making& make, const std::function<std::vector<std::string>(int count)>& places) {
        std::size_t turn = 0;
        for (const auto& [call, count] : callsOfRemoval(make)) {
            for (const auto& when : places(count)) {
                ASSERT_NO_FATAL_FAILURE(tryWith(make, call, errors[turn++ % std::size(errors)], when));
            }
        }
    }

    const TemporaryFolder folder_{folderInMemory()};
    const fs::path tree_ = folder_ / "tree";
    SampleHome::Fingerprint before_;
    std::string untried_;  ///< why nothing can be traced here
    int tried_ = 0;
    int struck_ = 0;
};

std::string middleOf(int count) { return std::to_string(count / 2 + 1); }

}  // namespace

TEST_F(InjectedErrors, AtEveryCallOfASmallRemovalLoseNothing) {
    const auto tree = [this] { makeSmallTree(); };
    for (const auto& [call, count] : callsOfRemoval(tree)) {
        for (const auto& error : errors) {
            for (int number = 1; number <= count; ++number) {
                ASSERT_NO_FATAL_FAILURE(tryWith(tree, call, error, std::to_string(number)));
                if (error.lasts || number == 1) {
                    ASSERT_NO_FATAL_FAILURE(tryWith(tree, call, error, std::to_string(number) + "+"));
                }
            }
        }
    }
}

// So many folders inside each other that not all can be held open, and the way back is to be found again.
TEST_F(InjectedErrors, OnTheWayBackFromDeepInsideLoseNothing) {
    tryInTurn([this] { makeDeep(tree_, 14); },
              [](int count) {
                  std::vector<std::string> places;
                  for (int number = 1; number <= count; ++number) {
                      places.push_back(std::to_string(number));
                  }
                  return places;
              });
}

TEST_F(InjectedErrors, InALargeRemovalLoseNothing) {
    tryInTurn([this] { makeLargeTree(); },
              [](int count) {
                  return std::vector<std::string>{"1", middleOf(count), middleOf(count) + "+3", "1+"};
              });
}

// Files of one folder that several threads take away together.
TEST_F(InjectedErrors, InALargeFolderLoseNothing) {
    const auto tree = [this] {
        makeWide(tree_, 1500);
        makeLinksIn(tree_);
    };
    tryInTurn(tree, [](int count) { return std::vector<std::string>{middleOf(count), std::to_string(count), "1+"}; });
}

// A folder whose listing breaks off at its end goes all the same, and so may an item after which nobody can look.
TEST_F(InjectedErrors, AreBlamedForWhatIsLeftAlone) {
    const auto small = [this] { makeSmallTree(); };
    for (const auto& [call, count] : callsOfRemoval(small)) {
        tryWith(small, call, errors[0], std::to_string(count));
    }
    const auto large = [this] { makeLargeTree(); };
    for (const auto& [call, count] : callsOfRemoval(large)) {
        for (const int first : {std::max(count / 2, 1), count / 2 + 1}) {  // of a listing, one call of two is its end
            tryWith(large, call, errors[0], std::to_string(first) + "+3");
        }
    }
}

TEST_F(InjectedErrors, OfThreadsThatCannotBeStartedDoNotHinder) {
    makeLargeTree();
    const auto traced = trace("--trace=clone,clone3 --inject=clone,clone3:error=EAGAIN");
    if (traced.isTraced) {
        EXPECT_NE(struckIn(traced.trace).size(), 0U) << "no thread was wanted for a large tree";
        EXPECT_FALSE(isThere(tree_));
        EXPECT_TRUE(traced.outcome && traced.outcome->end == RemovalEnd::gone);
    }
}

// As on an old system in a sandbox: nothing tells which mount a folder is on. Nobody may then go into one.
TEST_F(InjectedErrors, ThatHideAllMountsKeepEveryFolder) {
    makeSmallTree();
    const auto hideDescriptors = [] {
        const auto problem = keepMountsPrivate();
        return !problem.empty() || ::mount("none", "/proc", "tmpfs", 0, nullptr) == 0 ? problem : "no tmpfs";
    };
    const auto traced = removeTraced(tree_,
                                     "--trace=statx,openat2 --inject=openat2:error=ENOSYS "
                                     "--inject=statx:poke_exit=@arg5=ff0f0000",  // stx_mask without STATX_MNT_ID
                                     hideDescriptors);
    if (!traced.isTraced) {
        GTEST_SKIP() << "nothing can be traced here: " << traced.trace;
    }
    ASSERT_TRUE(traced.outcome && traced.outcome->failure) << traced.trace;
    EXPECT_EQ(traced.outcome->failure->code, EBUSY) << traced.outcome->failure->text();
    EXPECT_TRUE(isThere(tree_ / "inner/more/file"));
}

}  // namespace brimvault::tests
