#include <gmock/gmock.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "privileges/Trial.h"
#include "support/ChildProcess.h"

// The real parts: the system bus, polkitd with rules, pkexec, the installed root remover, and users without rights.

namespace brimvault::tests {

namespace {

std::string unless(bool holds, const char* problem) { return holds ? "" : problem; }

// In the order in which they were asked for.
std::string firstOf(std::initializer_list<std::string> problems) {
    for (const auto& problem : problems) {
        if (!problem.empty()) {
            return problem;
        }
    }
    return {};
}

// Folders of root's in the user's caches, and one of the user's own.
void makeThreeItems(const User& user) {
    makeHome(user);
    makeLockedFolder(user, "first");
    makeLockedFolder(user, "second");
    writeFile(user.caches() / "third/file", "the user's");
    for (const auto& path : {user.caches() / "third", user.caches() / "third/file"}) {
        ASSERT_EQ(::chown(path.c_str(), user.number, user.number), 0);
    }
}

}  // namespace

TEST(PrivilegedClean, RemovesWhatARuleAllowsWithOneToolAndWithoutAQuestion) {
    makeThreeItems(mayRemove);
    writeFile(mayRemove.home() / "Documents/letter", "precious");
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(mayRemove, Agent::grants);
        const auto clean = trial.clean({"first"});
        const auto tool = trial.tool();
        return firstOf({clean, trial.clean({"second", "third"}), trial.expectQuestions(0),
                        unless(tool != 0 && trial.tool() == tool, "the tool is not used again")});
    });
    EXPECT_TRUE(fs::is_empty(mayRemove.caches()));
    EXPECT_TRUE(fs::exists(mayRemove.home() / "Documents/letter"));
}

TEST(PrivilegedClean, ReportsWhatNobodyGrants) {
    const auto* number = std::getenv("BRIMVAULT_TEST_POLKIT");
    ASSERT_NE(number, nullptr);
    const auto polkit = static_cast<pid_t>(std::stol(number));
    const struct {
        const char* name;
        const User& user;
        Agent agent;
        std::map<std::string, std::string> environment = {};
        bool polkitAnswers = true;
    } rows[] = {{"denied by a rule", deniedUser, Agent::grants},
                {"nobody to be asked", askedUser, Agent::none},
                {"no system bus", mayRemove, Agent::none, {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/no-bus"}}},
                {"no answer of polkit's", askedUser, Agent::grants, {}, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        makeThreeItems(row.user);
        EXPECT_WELL_IN_CHILD([&] {
            Trial trial(row.user, row.agent, row.environment);
            trial.sendAsAdministrator(row.polkitAnswers ? SIGCONT : SIGSTOP, polkit);
            const auto result = trial.clean({"first", "third"}, {"first"});
            trial.sendAsAdministrator(SIGCONT, polkit);
            return firstOf({result, trial.expectQuestions(0), unless(trial.tool() == 0, "a tool was started")});
        });
        EXPECT_TRUE(fs::exists(row.user.caches() / "first/0/0"));
    }
}

TEST(PrivilegedClean, AsksOnceAlsoWhenTheToolIsKilledBetweenTwoRemovals) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(askedUser, Agent::grants);
        const auto before = trial.clean({"first"});
        const auto tool = trial.tool();
        trial.sendAsAdministrator(SIGKILL, tool);
        return firstOf({before, unless(ends(tool), "the tool lives"), trial.clean({"second", "third"}),
                        unless(trial.tool() != 0, "there is no new tool"), trial.expectQuestions(1)});
    });
}

// In a remote session the start of the tool asks, once as well.
TEST(PrivilegedClean, AsksOnceWhenRefusedAndAgainInTheNextClean) {
    for (const auto& user : {askedUser, remoteUser}) {
        SCOPED_TRACE(user.name);
        makeThreeItems(user);
        EXPECT_WELL_IN_CHILD([&] {
            Trial trial(user, Agent::refuses);
            return firstOf({trial.clean({"first", "second", "third"}, {"first", "second"}), trial.expectQuestions(1),
                            trial.clean({"first"}, {"first"}), trial.expectQuestions(2)});
        });
    }
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(remoteUser, Agent::grants);
        return firstOf({trial.clean({"first", "second"}), trial.expectQuestions(1)});
    });
}

TEST(PrivilegedClean, WithdrawsTheQuestionWhenItIsStopped) {
    for (const auto& user : {askedUser, remoteUser}) {
        SCOPED_TRACE(user.name);
        makeThreeItems(user);
        EXPECT_WELL_IN_CHILD([&] {
            Trial trial(user, Agent::hesitates);
            trial.beginClean({"first", "second"});
            const bool isAsked = trial.hearsCalls(1);
            trial.stopClean();
            // Whether a dialog of pkexec's closes is up to polkitd, which does not always notice that pkexec has ended.
            return firstOf({unless(isAsked, "nobody is asked"), trial.finishClean(0, {"first"}),
                            unless(user.number == remoteUser.number || trial.hearsCalls(2), "the question stays"),
                            // pkexec, which is asked to end, has the tool's name among its arguments until it has.
                            unless(comes([&] { return trial.tool() == 0; }), "the tool was started")});
        });
    }
}

TEST(PrivilegedClean, LetsNoOtherProcessOfTheUserTakeTheConnection) {
    makeThreeItems(mayRemove);
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        Trial trial(mayRemove, Agent::none);
        if (::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) != 0 || !trial.clean({"first"}).empty()) {
            return "nothing goes";
        }
        const bool isSafe = holdsInOtherProcess([application = ::getpid()] {
            const auto held = static_cast<int>(::syscall(SYS_pidfd_open, application, 0U));
            bool isTaken = false;
            for (int number = 0; number < 64; ++number) {
                isTaken = ::syscall(SYS_pidfd_getfd, held, number, 0U) >= 0 || isTaken;
            }
            return held >= 0 && !isTaken;
        });
        return unless(isSafe, "a descriptor was taken");
    });
}

TEST(PrivilegedClean, IsGrantedToTheProcessThatHasAskedAndToNoOtherOfTheUser) {
    makeThreeItems(askedUser);
    EXPECT_WELL_IN_CHILD([] {
        const pid_t other = ::fork();
        if (other == 0) {
            become(askedUser);
            pauseUntilParentEnds();
        }
        const fs::path questionsToOther = "/run/questions-other";
        startAgent(other, Agent::refuses, questionsToOther);
        Trial trial(askedUser, Agent::grants);
        const auto clean = trial.clean({"first"});
        const auto check = [](const std::string& how, pid_t process) {
            const auto command = "pkcheck --action-id com.quorvel.brimvault.remove " + how + " --process ";
            return std::system((command + std::to_string(process) + " >/dev/null 2>&1").c_str()) == 0;
        };
        return firstOf({clean, unless(check("", ::getpid()), "the right is not kept"),
                        unless(!check("", other), "another process holds it"),
                        unless(!check("--allow-user-interaction", other), "another process was granted it"),
                        unless(contentOf(questionsToOther) == "ready\ncom.quorvel.brimvault.remove\n",
                               "the agent of the other was not asked")});
    });
}

TEST(PrivilegedClean, GivesUpAToolThatDoesNotAnswerAndThatToolRemovesNothingAfterwards) {
    makeThreeItems(mayRemove);
    EXPECT_WELL_IN_CHILD([] {
        Trial trial(mayRemove, Agent::none);
        const auto before = trial.clean({"first"});
        const auto tool = trial.tool();
        trial.sendAsAdministrator(SIGSTOP, tool);
        const auto result = trial.clean({"second"}, {"second"});
        trial.sendAsAdministrator(SIGCONT, tool);
        return firstOf({before, result, unless(ends(tool), "the tool lives"),
                        unless(fs::exists(mayRemove.caches() / "second/2/2"), "the item went after all"),
                        trial.clean({"second"}),
                        unless(!fs::exists("/proc/" + std::to_string(tool)), "its end is not taken note of")});
    });
}

TEST(PrivilegedClean, EndsWithTheProgramAlsoInTheMiddleOfARemoval) {
    makeHome(mayRemove);
    makeLockedFolder(mayRemove, "large", 200'000);
    const pid_t program = ::fork();
    if (program == 0) {
        Trial trial(mayRemove, Agent::none);
        trial.beginClean({"large"});
        pauseUntilParentEnds();
    }
    const bool begun = comes([] { return !fs::exists(mayRemove.caches() / "large/0/0"); });
    const auto tool = toolOf(program);
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    EXPECT_TRUE(begun);
    EXPECT_NE(tool, 0);
    EXPECT_TRUE(ends(tool, std::chrono::seconds(5)));
    EXPECT_TRUE(fs::exists(mayRemove.caches() / "large"));
}

}  // namespace brimvault::tests
