#include <gmock/gmock.h>

#include <QCoreApplication>
#include <csignal>

#include "cleaner-tool/protocol/SocketPath.h"
#include "engine/removal/AuthorizationManager.h"
#include "engine/removal/FCutter.h"
#include "engine/removal/Remover.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using cleaner::Operation;
using namespace engine;
using platform::Interaction;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

// What an authorization is told to answer, and what it has been asked. It lives longer than the authorization.
struct System {
    bool isHeld = false;
    bool grants = false;
    bool starts = true;
    bool toolRuns = true;
    int questions = 0;
    std::function<void()> whileAsked;  ///< what happens while the question is open
    std::function<void()> whileChecked = [] {};
    int made = 0;
    int given = 0;  ///< back
    std::vector<platform::RightItem> rights;
    std::vector<std::vector<std::string>> started;  ///< the arguments
};

class ToldAuthorization final : public platform::Authorization {
public:
    explicit ToldAuthorization(System& system) : system_(system) { ++system_.made; }
    bool copyRights(const std::vector<platform::RightItem>& rights, Interaction interaction,
                    const std::stop_token& stop) override {
        system_.rights = rights;
        system_.whileChecked();
        if (interaction == Interaction::allowed) {
            ++system_.questions;
            if (system_.whileAsked) {
                system_.whileAsked();
                return !stop.stop_requested();
            }
            system_.isHeld = system_.grants;
        }
        return system_.isHeld;
    }
    bool executeWithPrivileges(const std::filesystem::path& /*tool*/,
                               const std::vector<std::string>& arguments) override {
        system_.started.push_back(arguments);
        return system_.starts;
    }
    bool isToolRunning() override { return system_.toolRuns; }
    void destroyRights() override { ++system_.given; }

private:
    System& system_;
};

class Messages final : public AuthorizationListener {
public:
    void onAuthorizationComplete() override { heard.emplace_back("complete"); }
    void onAuthorizationFailed() override { heard.emplace_back("failed"); }
    void onDeAuthorizationComplete() override { heard.emplace_back("given back"); }
    void onCommadExecuteSuccess() override { heard.emplace_back("started"); }
    void onCommadExecuteFailure() override { heard.emplace_back("not started"); }
    std::vector<std::string> heard;
};

class Authorizing : public testing::Test {
protected:
    Authorizing() { manager_.setListener(&messages_); }

    System system_;
    Messages messages_;
    AuthorizationManager manager_{[this] { return std::make_unique<ToldAuthorization>(system_); }};
    const AuthorizationManager::ToolPaths tool_ = {"/tool"};
};

// A root remover in memory.
struct ToldTool {
    std::size_t start = 1;  ///< the first after which it can be met
    bool answers = true;    ///< or its connection breaks off at a request
    std::string greeting = *cleaner::encode(Operation::ready, {&cleaner::version, 1});
    int met = 0;
    std::vector<Operation> asked;
    std::string lastPath;
};

class ToldConnection final : public platform::ToolConnection {
public:
    explicit ToldConnection(ToldTool& tool) : tool_(tool), pending_(tool.greeting) { ++tool.met; }
    bool send(std::string_view bytes) override {
        reader_.feed(bytes);
        const auto request = reader_.take();
        tool_.asked.push_back(request->operation);
        tool_.lastPath = request->content;
        if (request->operation != Operation::keepFolderAtPath && request->operation != Operation::expectFolder) {
            isBroken_ = !tool_.answers;
            pending_ += *cleaner::encode(Operation::working) + *cleaner::encode(Operation::done, "/in/trash");
        }
        return true;
    }
    std::optional<std::string> receive(std::chrono::milliseconds /*patience*/) override {
        return isBroken_ ? std::nullopt : std::optional(std::exchange(pending_, {}));
    }

private:
    ToldTool& tool_;
    cleaner::MessageReader reader_;
    std::string pending_;
    bool isBroken_ = false;
};

class RemovingAsRoot : public Authorizing {
protected:
    RemovingAsRoot() { system_.isHeld = true; }

    TemporaryFolder folder_;
    SubstituteHome home_{folder_.path()};
    ToldTool told_;
    std::vector<std::string> lookedFor_;
    int sleeps_ = 0;
    Remover remover_{{manager_, "/tool",
                      [this](const std::string& name) -> std::unique_ptr<platform::ToolConnection> {
                          lookedFor_.push_back(name);
                          const bool isMet = system_.started.size() >= told_.start;
                          return isMet ? std::make_unique<ToldConnection>(told_) : nullptr;
                      },
                      [this](std::chrono::milliseconds /*duration*/) { ++sleeps_; }}};
};

}  // namespace

TEST_F(Authorizing, AsksOnceEachTimeItIsLetAndNeverForARightThatIsHeld) {
    const struct {
        const char* name;
        bool let, isHeld, grants;        // before the request
        bool answer, mayAsk;             // after it
        std::vector<std::string> hears;  // from it
    } requests[] = {
        {"not let", false, false, false, false, false, {}},
        {"held", true, true, false, true, true, {}},
        {"refused", true, false, false, false, false, {"failed"}},
        {"refused before", false, false, true, false, false, {}},
        {"refused again", true, false, false, false, false, {"failed"}},
        {"granted", true, false, true, true, true, {"complete"}},
        {"run out", false, false, true, false, true, {}},
        {"granted again", true, false, true, true, true, {"complete"}},
    };
    for (const auto& request : requests) {
        SCOPED_TRACE(request.name);
        if (request.let) {
            manager_.setIsNeedAskAuthentication(true);
        }
        system_.isHeld = request.isHeld;
        system_.grants = request.grants;
        system_.questions = 0;
        messages_.heard.clear();
        EXPECT_EQ(manager_.authenticate(tool_), request.answer);
        EXPECT_EQ(manager_.m_bIsNeedAskAuthentication(), request.mayAsk);
        EXPECT_EQ(system_.questions, request.hears.empty() ? 0 : 1);
        EXPECT_EQ(messages_.heard, request.hears);
    }
    EXPECT_EQ(system_.made, 1);
    EXPECT_FALSE(manager_.fetchPassword({}));
    system_.grants = false;
    EXPECT_TRUE(manager_.fetchPassword(tool_)) << "the answer is that the user was asked";
    EXPECT_FALSE(manager_.isAuthenticated({}));
}

TEST_F(Authorizing, WithdrawsAnOpenQuestionAndAsksAgainOnlyWhenLet) {
    manager_.setIsNeedAskAuthentication(true);
    system_.whileAsked = [this] { manager_.giveUpAsking(); };
    EXPECT_FALSE(manager_.authenticate(tool_));
    EXPECT_FALSE(manager_.authenticate(tool_));
    EXPECT_EQ(system_.questions, 1);
    EXPECT_THAT(messages_.heard, ElementsAre("failed"));
    manager_.setIsNeedAskAuthentication(true);
    manager_.giveUpAsking();
    EXPECT_FALSE(manager_.authenticate(tool_));
    EXPECT_EQ(system_.questions, 1);

    manager_.setIsNeedAskAuthentication(true);
    system_.whileAsked = [this] { manager_.setIsNeedAskAuthentication(true); };
    EXPECT_FALSE(manager_.authenticate(tool_)) << "the question of an earlier time";
    EXPECT_TRUE(manager_.m_bIsNeedAskAuthentication());
    system_.whileAsked = {};
    system_.grants = true;
    EXPECT_TRUE(manager_.authenticate(tool_));
    EXPECT_EQ(system_.questions, 3);
}

TEST_F(Authorizing, PassesOnWhatTheGivenInterfaceTakesAndNothingCutOff) {
    EXPECT_FALSE(manager_.executeCommand("/tool", {}, 0));
    system_.isHeld = true;
    EXPECT_TRUE(manager_.isAuthenticated(AuthorizationManager::ToolPaths(21, "/tool")));
    EXPECT_THAT(system_.rights, SizeIs(20));
    EXPECT_EQ(system_.rights.front().name, "system.privilege.admin");
    EXPECT_EQ(system_.rights.front().value, "/tool");
    EXPECT_TRUE(manager_.isAuthenticated({"/" + std::string(126, 'x')}));
    EXPECT_FALSE(manager_.isAuthenticated({"/" + std::string(127, 'x')}));
    EXPECT_TRUE(manager_.executeCommand("/tool", std::vector<std::string>(25, "x"), 0));
    system_.starts = false;
    EXPECT_FALSE(manager_.executeCommand("/tool", {}, 0));
    EXPECT_THAT(system_.started, ElementsAre(SizeIs(19), SizeIs(0)));
    EXPECT_THAT(messages_.heard, ElementsAre("started", "not started"));
}

TEST_F(Authorizing, GivesRightsBackOnceAndBeginsAnew) {
    manager_.deauthenticate();
    (void)manager_.isAuthenticated(tool_);
    manager_.deauthenticate();
    manager_.deauthenticate();
    (void)manager_.isAuthenticated(tool_);
    EXPECT_EQ(system_.given, 1);
    EXPECT_EQ(system_.made, 2);
    EXPECT_THAT(messages_.heard, ElementsAre("given back"));

    AuthorizationManager ofNobody([] { return nullptr; });
    ofNobody.setIsNeedAskAuthentication(true);
    EXPECT_FALSE(ofNobody.executeCommand("/tool", {}, 0));
    EXPECT_FALSE(ofNobody.isToolRunning());
    ofNobody.deauthenticate();
}

TEST_F(Authorizing, IgnoresTheEndsOfChildrenFromTheFirstStartToTheLastStop) {
    const auto isIgnored = [] {
        struct sigaction current {};
        ::sigaction(SIGCHLD, nullptr, &current);
        return current.sa_handler == SIG_IGN;
    };
    EXPECT_TRUE(manager_.stopIgnoreChildsSignals());
    EXPECT_TRUE(manager_.startIgnoreChildsSignals());
    EXPECT_TRUE(manager_.startIgnoreChildsSignals());
    EXPECT_TRUE(manager_.stopIgnoreChildsSignals());
    EXPECT_TRUE(isIgnored());
    EXPECT_TRUE(manager_.stopIgnoreChildsSignals());
    EXPECT_FALSE(isIgnored());
}

TEST_F(RemovingAsRoot, UsesOneToolAndTellsItFirstWhatToKeep) {
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/a"));
    EXPECT_EQ(told_.asked.front(), Operation::keepFolderAtPath);
    EXPECT_EQ(told_.asked.back(), Operation::removeFileAtPath);
    told_.asked.clear();
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/b", files::FileIdentity{1, 2, {}}));
    EXPECT_EQ(told_.lastPath, "/b");
    EXPECT_EQ(remover_.recycleFileAtPath("/c"), "/in/trash");
    EXPECT_THAT(told_.asked,
                ElementsAre(Operation::expectFolder, Operation::removeFileAtPath, Operation::removeToTrashFileAtPath));
    EXPECT_EQ(told_.met, 1);
    EXPECT_THAT(system_.started,
                ElementsAre(ElementsAre(lookedFor_.back(), std::to_string(QCoreApplication::applicationPid()))));
}

TEST_F(RemovingAsRoot, WaitsForAToolThatRunsAndStartsAnotherForTheNextRequest) {
    told_.start = 3;
    system_.toolRuns = false;
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/a"));
    system_.toolRuns = true;
    system_.isHeld = false;
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/a")) << "never started";
    EXPECT_EQ(remover_.recycleFileAtPath("/a"), std::nullopt);
    EXPECT_EQ(sleeps_, 0);
    system_.isHeld = true;
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/a"));
    EXPECT_EQ(sleeps_, 50);
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/a"));
    ASSERT_THAT(system_.started, SizeIs(3));
    EXPECT_NE(system_.started[1][0], system_.started[2][0]);
}

TEST_F(RemovingAsRoot, ReplacesAToolThatBreaksOffAndDoesNotAskItAgainByItself) {
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/" + std::string(cleaner::maxMessageLength, 'x'))) << "not even sent";
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/a"));
    told_.answers = false;
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/b"));
    EXPECT_EQ(told_.met, 1);
    told_.answers = true;
    told_.asked.clear();
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/b"));
    EXPECT_EQ(told_.met, 2);
    EXPECT_EQ(told_.asked.front(), Operation::keepFolderAtPath);
}

TEST_F(RemovingAsRoot, UsesNoToolOfAnotherVersionNorOneThatSaysSomethingElse) {
    for (const auto& greeting :
         {*cleaner::encode(Operation::ready, "0"), *cleaner::encode(Operation::done, {&cleaner::version, 1}),
          std::string("\xff\xff\xff\xff", 4)}) {
        told_.greeting = greeting;
        EXPECT_FALSE(remover_.removeAsRootFileAtPath("/a"));
    }
    EXPECT_THAT(told_.asked, testing::IsEmpty());
}

TEST_F(RemovingAsRoot, BeginsNothingAfterAStopUntilItIsAllowedAgain) {
    system_.whileChecked = [this] { (remover_.stopAskingUser(), remover_.allowAskingUser()); };
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/a")) << "the stop is of this request, though another may begin";
    EXPECT_TRUE(system_.started.empty() && system_.questions == 0);
    system_.whileChecked = [] {};
    EXPECT_TRUE(remover_.removeAsRootFileAtPath("/a"));
    remover_.stopAskingUser();
    EXPECT_FALSE(remover_.removeAsRootFileAtPath("/b"));
}

TEST(NamesOfRootRemovers, HaveSixDigitsInTheRangeThatIsDrawnFrom) {
    for (int times = 0; times < 1000; ++times) {
        const auto name = Remover::generateRootRemoverServerName();
        ASSERT_TRUE(cleaner::isSocketName(name)) << name;
        const auto number = std::stoul(name.substr(cleaner::socketNamePrefix.size()));
        EXPECT_GE(number, 100'000U);
        EXPECT_LE(number, 999'998U);
    }
}

TEST_F(RemovingAsRoot, MayAskTheUserFromTheBeginningOfACleanUntilItIsCancelled) {
    FCutter cutter(CleanTable::fileSections(remover_));
    EXPECT_FALSE(manager_.m_bIsNeedAskAuthentication());
    cutter.Clean({}, {}, {}, {}, {});
    EXPECT_TRUE(manager_.m_bIsNeedAskAuthentication());
    cutter.cancelCleanAll();
    EXPECT_FALSE(manager_.m_bIsNeedAskAuthentication());
}

}  // namespace brimvault::tests
