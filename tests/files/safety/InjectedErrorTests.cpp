// Every system call of a removal fails in turn. Whatever the removal makes of it: it ends, calls nothing gone that is
// still there, blames the error that there was, and touches nothing but its item.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string_view>

#include "support/FixtureTrees.h"
#include "support/TracedRemoval.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

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

// Not the removal's work on files: its memory, the program's own waiting and answer, and the pipes with which
// sanitizers look at memory.
const std::set<std::string, std::less<>> notInjected = {"mmap", "pipe2", "poll", "restart_syscall", "write"};

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

bool isAtOrBelow(const fs::path& inner, const fs::path& outer) {
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

// By name, the most calls that any one thread made: strace counts for each thread from one on.
using Calls = std::map<std::string, int>;

Calls callsIn(const std::string& trace) {
    std::map<std::string, std::map<std::string, int>> callsOfThreads;
    std::istringstream lines(trace);
    for (std::string thread, call; lines >> thread >> call; lines.ignore(65536, '\n')) {
        const std::string name = call.substr(0, call.find('('));
        if (name.size() < call.size() && call[0] != '<' && !notInjected.contains(name)) {
            ++callsOfThreads[name][thread];
        }
    }
    Calls most;
    for (const auto& [name, threads] : callsOfThreads) {
        for (const auto& [thread, count] : threads) {
            most[name] = std::max(most[name], count);
        }
    }
    return most;
}

std::size_t errorsIn(const std::string& trace) {
    std::size_t count = 0;
    const std::string_view mark = "(INJECTED)";
    for (auto place = trace.find(mark); place != std::string::npos; place = trace.find(mark, place + 1)) {
        ++count;
    }
    return count;
}

// The last of them, to tell.
std::string struckIn(const std::string& trace) {
    const auto mark = trace.rfind("(INJECTED)");
    if (mark == std::string::npos) {
        return "";
    }
    const auto start = trace.rfind('\n', mark);
    return "\n" + trace.substr(start == std::string::npos ? 0 : start + 1, mark - start - 1);
}

using Making = std::function<void()>;

class InjectedErrors : public testing::Test {
protected:
    void SetUp() override {
        // What the tree is linked with, and what lies beside it with the names of what is in it.
        writeFile(outside_ / "file", "precious");
        writeFile(outside_ / "inner/file", "precious");
        writeFile(folder_ / "inner/file", "precious");
        before_ = fingerprint(folder_.path(), {"tree"});
    }
    // Where calls were found, errors have struck; else nothing was tested.
    void TearDown() override {
        if (!untried_.empty()) {
            GTEST_SKIP() << "nothing can be traced here: " << untried_;
        }
        RecordProperty("removals", tried_);
        RecordProperty("struck", struck_);
        EXPECT_EQ(struck_ > 0, tried_ > 0);
    }

    void makeLinksIn(const fs::path& folder) const {
        fs::create_directory_symlink(outside_, folder / "link");
        fs::create_hard_link(outside_ / "file", folder / "second name");
    }

    void makeSmallTree() const {
        writeFile(tree_ / "file", "1");
        makeLinksIn(tree_);
        writeFile(tree_ / "inner/file", "2");
        writeFile(tree_ / "inner/more/file", "3");
        fs::create_directory(tree_ / "empty");
    }

    // Wide and deep enough for several threads to be at work in it, and for folders to be closed on the way.
    void makeLargeTree() const {
        for (int number = 0; number < 150; ++number) {
            const auto text = std::to_string(number);
            writeFile(tree_ / std::to_string(number % 12) / text / "inner/file", text);
        }
        auto deep = tree_ / "deep";
        for (int level = 0; level < 30; ++level) {
            deep /= "inner";
        }
        writeFile(deep / "file", "");
        makeLinksIn(tree_ / "7");
    }

    // The calls of a removal in which nothing fails. None where nothing can be traced.
    Calls callsOfRemoval(const Making& make) {
        make();
        const auto traced = TracedRemoval::run(tree_, {"--trace=%file,%desc"});
        untried_ = traced.untried;
        if (untried_.empty()) {
            EXPECT_EQ(traced.trouble, "");
            EXPECT_FALSE(isThere(tree_)) << traced.trace;
            EXPECT_NE(callsIn(traced.trace), Calls()) << "nothing was seen of the removal";
        }
        return callsIn(traced.trace);
    }

    // What is wrong with what came of it.
    std::string judge(const TracedRemoval& traced, int code) const {
        if (!traced.untried.empty() || !traced.trouble.empty()) {
            return traced.untried + traced.trouble;
        }
        if (traced.outcome->end == RemovalEnd::gone) {
            return isThere(tree_) ? "called gone what is still there" : "";
        }
        const auto& failure = *traced.outcome->failure;
        if (!isAtOrBelow(failure.path, tree_) && !isAtOrBelow(tree_, failure.path)) {
            return "blamed " + failure.path.native();
        }
        const bool isTheReason = failure.code == code;
        const bool isThePlace = !isThere(tree_) || isThere(failure.path);
        return isTheReason && isThePlace ? "" : "blamed \"" + failure.text() + "\" of " + failure.path.native();
    }

    // Of entries that could not be removed there are as many as were kept from it, and one of them is blamed.
    void expectNoMoreLeftThanFailed(const TracedRemoval& traced, const std::string& when) const {
        std::set<fs::path> left;
        if (isThere(tree_)) {
            left.insert(tree_);
            for (const auto& entry : fs::recursive_directory_iterator(tree_)) {
                left.erase(entry.path().parent_path());
                left.insert(entry.path());
            }
        }
        EXPECT_LE(left.size(), errorsIn(traced.trace)) << when << struckIn(traced.trace);
        if (!left.empty() && traced.outcome && traced.outcome->failure) {
            EXPECT_TRUE(left.contains(traced.outcome->failure->path)) << traced.outcome->failure->path;
        }
    }

    // `when` as strace takes it: the how-many-eth call of its name, or from which on.
    void tryWith(const Making& make, const std::string& call, const InjectedError& error, const std::string& when) {
        removeTree(tree_);
        make();
        const auto traced = TracedRemoval::run(
            tree_, {"--trace=" + call, "--inject=" + call + ":error=" + error.name + ":when=" + when});
        ASSERT_NE(traced.trouble, TracedRemoval::notEnded) << call << " number " << when << " answers " << error.name;
        struck_ += errorsIn(traced.trace) == 0 ? 0 : 1;
        ++tried_;
        const auto wrong = judge(traced, error.code);
        EXPECT_EQ(wrong, "") << call << " number " << when << " answers " << error.name << struckIn(traced.trace);
        EXPECT_EQ(fingerprint(folder_.path(), {"tree"}), before_) << call << " " << error.name << " " << when;
        if (call == "unlinkat") {
            expectNoMoreLeftThanFailed(traced, when);
        }
    }

    const TemporaryFolder folder_{folderInMemory()};
    const fs::path outside_ = folder_ / "outside";
    const fs::path tree_ = folder_ / "tree";
    SampleHome::Fingerprint before_;
    std::string untried_;  ///< why nothing can be traced here
    int tried_ = 0;
    int struck_ = 0;
};

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
    constexpr int levels = 14;
    std::size_t turn = 0;
    const auto tree = [this] { makeDeep(tree_, levels); };
    for (const auto& [call, count] : callsOfRemoval(tree)) {
        for (int number = 1; number <= count; ++number) {
            ASSERT_NO_FATAL_FAILURE(tryWith(tree, call, errors[turn++ % std::size(errors)], std::to_string(number)));
        }
    }
}

// Not every error in every place, which would take minutes: they take turns.
TEST_F(InjectedErrors, InALargeRemovalLoseNothing) {
    std::size_t turn = 0;
    const auto tree = [this] { makeLargeTree(); };
    for (const auto& [call, count] : callsOfRemoval(tree)) {
        const auto middle = std::to_string(count / 2 + 1);
        for (const auto& when : {std::string("1"), middle, middle + "+3", std::string("1+")}) {
            ASSERT_NO_FATAL_FAILURE(tryWith(tree, call, errors[turn++ % std::size(errors)], when));
        }
    }
}

// Files of one folder that several threads take away together.
TEST_F(InjectedErrors, InALargeFolderLoseNothing) {
    const auto tree = [this] {
        makeWide(tree_, 1500);
        makeLinksIn(tree_);
    };
    std::size_t turn = 0;
    for (const auto& [call, count] : callsOfRemoval(tree)) {
        for (const auto& when : {std::to_string(count / 2 + 1), std::to_string(count), std::string("1+")}) {
            ASSERT_NO_FATAL_FAILURE(tryWith(tree, call, errors[turn++ % std::size(errors)], when));
        }
    }
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
    const auto traced = TracedRemoval::run(tree_, {"--trace=clone,clone3", "--inject=clone,clone3:error=EAGAIN"});
    untried_ = traced.untried;
    if (untried_.empty()) {
        EXPECT_EQ(traced.trouble, "");
        EXPECT_FALSE(isThere(tree_));
        EXPECT_TRUE(traced.outcome && traced.outcome->end == RemovalEnd::gone);
    }
}

}  // namespace brimvault::tests
