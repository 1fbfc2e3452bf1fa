#include <gmock/gmock.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>

#include "privileges/Trial.h"
#include "support/ChildProcess.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

// The real parts: the system bus, polkitd with rules, pkexec, the installed root remover, and users without rights.

namespace brimvault::tests {

using namespace trial;

namespace fs = std::filesystem;

namespace {

std::string expected(const Trial::Result& result, std::size_t removed, const std::vector<std::string>& notRemoved) {
    std::map<std::string, std::string> reasons;
    for (const auto& name : notRemoved) {
        reasons[name] = std::strerror(EACCES);
    }
    return result.removed == removed && result.notRemoved == reasons
               ? ""
               : "removed " + std::to_string(result.removed) +
                     ", not removed: " + testing::PrintToString(result.notRemoved);
}

std::string expectQuestions(const Trial& trial, int count) {
    return trial.questions() == count ? std::string() : "asked " + std::to_string(trial.questions()) + " times";
}

std::string firstOf(std::initializer_list<std::string> problems) {
    for (const auto& problem : problems) {
        if (!problem.empty()) {
            return problem;
        }
    }
    return {};
}

fs::path cachesOf(const User& user) { return user.home() / "Library" / "Caches"; }

// Folders of root's in the user's caches, and one of the user's own.
void makeThreeItems(const User& user) {
    makeHome(user);
    makeLockedFolder(user, "first");
    makeLockedFolder(user, "second");
    writeFile(cachesOf(user) / "third/file", "the user's");
    for (const auto& path : {cachesOf(user) / "third", cachesOf(user) / "third/file"}) {
        ASSERT_EQ(::chown(path.c_str(), user.number, user.number), 0);
    }
}

const std::vector<std::string> threeItems = {"first", "second", "third"};

}  // namespace

TEST(PrivilegedClean, RemovesWhatARuleAllowsWithOneToolAndWithoutAQuestion) {
    makeThreeItems(mayRemove);
    writeFile(mayRemove.home() / "Documents/letter", "precious");
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(mayRemove, Agent::grants);
        const auto clean = expected(trial.clean({"first"}), 1, {});
        const auto tool = trial.tool();
        return firstOf({clean, expected(trial.clean({"second", "third"}), 2, {}), expectQuestions(trial, 0),
                        tool != 0 && trial.tool() == tool ? "" : "the tool is not used again"});
    });
    EXPECT_TRUE(fs::is_empty(cachesOf(mayRemove)));
    EXPECT_TRUE(fs::exists(mayRemove.home() / "Documents/letter"));
}

TEST(PrivilegedClean, ReportsWhatIsDenied) {
    makeThreeItems(deniedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(deniedUser, Agent::grants);
        return firstOf({expected(trial.clean(threeItems), 1, {"first", "second"}), expectQuestions(trial, 0),
                        trial.tool() == 0 ? "" : "a tool was started"});
    });
    EXPECT_TRUE(fs::exists(cachesOf(deniedUser) / "first/0/0"));
}

TEST(PrivilegedClean, ReportsWhatNobodyCanBeAskedFor) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::none);
        return expected(trial.clean(threeItems), 1, {"first", "second"});
    });
}

TEST(PrivilegedClean, DoesWithoutASystemBus) {
    makeThreeItems(mayRemove);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(mayRemove, Agent::none);
        trial.loseSystemBus();
        return expected(trial.clean(threeItems), 1, {"first", "second"});
    });
}

TEST(PrivilegedClean, AsksOnceAlsoWhenTheToolIsKilledBetweenTwoRemovals) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::grants);
        const auto before = expected(trial.clean({"first"}), 1, {});
        const auto tool = trial.tool();
        trial.sendAsAdministrator(SIGKILL, tool);
        const bool ended = comes([&] { return !isAlive(tool); });
        return firstOf({before, ended ? "" : "the tool lives", expected(trial.clean({"second", "third"}), 2, {}),
                        trial.tool() != 0 ? "" : "there is no new tool", expectQuestions(trial, 1)});
    });
}

TEST(PrivilegedClean, AsksOnceWhenRefusedAndAgainInTheNextClean) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::refuses);
        return firstOf({expected(trial.clean(threeItems), 1, {"first", "second"}), expectQuestions(trial, 1),
                        expected(trial.clean({"first", "second"}), 0, {"first", "second"}), expectQuestions(trial, 2)});
    });
}

TEST(PrivilegedClean, WithdrawsTheQuestionWhenItIsStopped) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::hesitates);
        trial.beginClean({"first", "second"});
        const bool asked = comes([&] { return trial.questions() == 1; });
        trial.stopClean();
        const auto result = trial.finishClean();
        return firstOf({asked ? "" : "nobody is asked", expected(result, 0, {"first"}),
                        comes([&] { return trial.questions() == 2; }) ? "" : "the question stays"});
    });
}

// In a remote session the start of the tool asks, once as well.
TEST(PrivilegedClean, AsksOnceWhereWhatIsGrantedIsNotKept) {
    makeThreeItems(remoteUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(remoteUser, Agent::refuses);
        return firstOf({expected(trial.clean(threeItems), 1, {"first", "second"}), expectQuestions(trial, 1),
                        expected(trial.clean({"first"}), 0, {"first"}), expectQuestions(trial, 2)});
    });
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(remoteUser, Agent::grants);
        return firstOf({expected(trial.clean({"first", "second"}), 2, {}), expectQuestions(trial, 1)});
    });
    // Last, as polkitd may answer wrongly for a moment after a check whose caller has ended.
    makeThreeItems(remoteUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(remoteUser, Agent::hesitates);
        trial.beginClean({"first", "second"});
        const bool asked = comes([&] { return trial.questions() == 1; });
        trial.stopClean();
        // Whether the dialog closes is up to polkitd, which does not always notice that pkexec has ended.
        return firstOf({asked ? "" : "nobody is asked", expected(trial.finishClean(), 0, {"first"}),
                        // pkexec, which is asked to end, has the tool's name among its arguments until it has.
                        comes([&] { return trial.tool() == 0; }) ? "" : "the tool was started"});
    });
}

TEST(PrivilegedClean, LetsNoOtherProcessOfTheUserTakeTheConnection) {
    makeThreeItems(mayRemove);
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        Trial trial(mayRemove, Agent::none);
        if (::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) != 0 || !expected(trial.clean({"first"}), 1, {}).empty()) {
            return "nothing goes";
        }
        const pid_t application = ::getpid();
        const pid_t other = ::fork();
        if (other == 0) {
            const auto held = static_cast<int>(::syscall(SYS_pidfd_open, application, 0U));
            bool isTaken = false;
            for (int number = 0; number < 64; ++number) {
                isTaken = ::syscall(SYS_pidfd_getfd, held, number, 0U) >= 0 || isTaken;
            }
            ::_exit(held >= 0 && !isTaken ? 0 : 1);
        }
        int status = 1;
        ::waitpid(other, &status, 0);
        return status == 0 ? "" : "a descriptor was taken";
    });
}

TEST(PrivilegedClean, DoesWithoutAPolkitThatAnswers) {
    makeThreeItems(askedUser);
    const auto* number = std::getenv("BRIMVAULT_TEST_POLKIT");
    ASSERT_NE(number, nullptr);
    const auto polkit = static_cast<pid_t>(std::stol(number));
    EXPECT_WELL_IN_CHILD([&] {
        Trial trial(askedUser, Agent::grants);
        trial.sendAsAdministrator(SIGSTOP, polkit);
        const auto result = trial.clean({"first", "third"});
        trial.sendAsAdministrator(SIGCONT, polkit);
        return expected(result, 1, {"first"});
    });
}

TEST(PrivilegedClean, IsGrantedToTheProcessThatHasAskedAndToNoOtherOfTheUser) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        const pid_t other = startIdler(askedUser);
        const fs::path questionsToOther = "/run/questions-other";
        startAgent(other, Agent::refuses, questionsToOther);
        Trial trial(askedUser, Agent::grants);
        const auto clean = expected(trial.clean({"first"}), 1, {});
        const auto check = [](const std::string& how, pid_t process) {
            return std::system(("pkcheck --action-id com.quorvel.brimvault.remove " + how + " --process " +
                                std::to_string(process) + " >/dev/null 2>&1")
                                   .c_str()) == 0;
        };
        const bool isHeld = check("", ::getpid());
        const bool isHeldByOther = check("", other);
        const bool isGrantedToOther = check("--allow-user-interaction", other);
        std::ifstream file(questionsToOther);
        const std::string asked{std::istreambuf_iterator<char>(file), {}};
        return firstOf({clean, isHeld ? "" : "the right is not kept", isHeldByOther ? "another process holds it" : "",
                        isGrantedToOther ? "another process was granted it" : "",
                        asked == "ready\ncom.quorvel.brimvault.remove\n" ? "" : "the other was not asked: " + asked});
    });
}

TEST(PrivilegedClean, ReportsAnItemWhoseToolIsKilledAndFinishesItInTheNextClean) {
    makeHome(askedUser);
    makeLockedFolder(askedUser, "large", 60'000);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::grants);
        trial.beginClean({"large"});
        const bool begun = comes([&] { return !fs::exists(trial.caches() / "large/0/0"); });
        trial.sendAsAdministrator(SIGKILL, trial.tool());
        const auto result = trial.finishClean();
        return firstOf({begun ? "" : "nothing goes", expected(result, 0, {"large"}),
                        fs::exists(trial.caches() / "large") ? "" : "it was too fast to be killed",
                        expected(trial.clean({"large"}), 1, {}), expectQuestions(trial, 1)});
    });
}

TEST(PrivilegedClean, GivesUpAToolThatDoesNotAnswerAndThatToolRemovesNothingAfterwards) {
    makeThreeItems(mayRemove);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(mayRemove, Agent::none);
        const auto before = expected(trial.clean({"first"}), 1, {});
        const auto tool = trial.tool();
        trial.sendAsAdministrator(SIGSTOP, tool);
        const auto result = expected(trial.clean({"second"}), 0, {"second"});
        trial.sendAsAdministrator(SIGCONT, tool);
        const bool ended = comes([&] { return !isAlive(tool); });
        return firstOf({before, result, ended ? "" : "the tool lives",
                        fs::exists(trial.caches() / "second/2/2") ? "" : "the item went after all",
                        expected(trial.clean({"second"}), 1, {}),
                        fs::exists("/proc/" + std::to_string(tool)) ? "its end is not taken note of" : ""});
    });
}

TEST(PrivilegedClean, EndsWithTheProgramAlsoInTheMiddleOfARemoval) {
    makeHome(mayRemove);
    makeLockedFolder(mayRemove, "large", 200'000);
    const pid_t program = ::fork();
    if (program == 0) {
        Trial trial(mayRemove, Agent::none);
        trial.beginClean({"large"});
        ::pause();
        ::_exit(0);
    }
    const bool begun = comes([] { return !fs::exists(cachesOf(mayRemove) / "large/0/0"); });
    const auto tool = toolOf(program);
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    const auto killed = std::chrono::steady_clock::now();
    const bool ended = comes([&] { return !isAlive(tool); }, std::chrono::seconds(5));
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - killed);
    std::cout << "The tool ended " << took.count() << " ms after the program.\n";
    EXPECT_TRUE(begun);
    EXPECT_NE(tool, 0);
    EXPECT_TRUE(ended);
    EXPECT_TRUE(fs::exists(cachesOf(mayRemove) / "large"));
}

TEST(PrivilegedClean, MovesIntoTheUsersTrash) {
    makeHome(mayRemove);
    makeLockedFolder(mayRemove, "some folder");
    for (const char* folder :
         {".local", ".local/share", ".local/share/Trash", ".local/share/Trash/files", ".local/share/Trash/info"}) {
        fs::create_directory(mayRemove.home() / folder);
        ASSERT_EQ(::chown((mayRemove.home() / folder).c_str(), mayRemove.number, mayRemove.number), 0);
    }
    const auto trash = mayRemove.home() / ".local/share/Trash";
    EXPECT_WELL_IN_CHILD([&] {
        Trial trial(mayRemove, Agent::none);
        const auto place = trial.remover().recycleFileAtPath(trial.caches() / "some folder");
        std::ifstream record(trash / "info/some folder.trashinfo");  // as the user reads it
        std::string text{std::istreambuf_iterator<char>(record), {}};
        return firstOf({place == trash / "files/some folder" ? "" : "it is elsewhere",
                        text.find("Path=/run/home/may/Library/Caches/some%20folder\n") != std::string::npos
                            ? ""
                            : "the record is: " + text});
    });
    // The contents of a folder that the user cannot search are not made accessible by a move.
    makeLockedFolder(mayRemove, "closed");
    fs::permissions(cachesOf(mayRemove) / "closed", static_cast<fs::perms>(0700));
    EXPECT_WELL_IN_CHILD([&] {
        Trial trial(mayRemove, Agent::none);
        return trial.remover().recycleFileAtPath(trial.caches() / "closed/0") ? "it is opened" : "";
    });
    EXPECT_TRUE(fs::exists(trash / "files/some folder/0/0"));
    EXPECT_FALSE(fs::exists(cachesOf(mayRemove) / "some folder"));
}

}  // namespace brimvault::tests
