#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <fstream>
#include <map>

#include "cleaner-tool/protocol/Protocol.h"
#include "cleaner-tool/protocol/SocketPath.h"
#include "platform/ToolConnection.h"
#include "privileges/Trial.h"
#include "support/ChildProcess.h"
#include "support/NameExchange.h"
#include "trial/SampleHome.h"

// The installed root remover, started as pkexec starts it, and clients that speak the wire protocol byte by byte.

namespace brimvault::tests {

using namespace trial;

namespace fs = std::filesystem;

namespace {

using cleaner::Operation;

const User& user = mayRemove;
const std::string name = "com.quorvel.brimvault.BrimvaultCleaner.123456";

fs::path place() { return cleaner::socketFolder(user.number) / name; }
fs::path caches() { return user.home() / "Library/Caches"; }

[[noreturn]] void becomeTool(pid_t application) {
    const auto number = std::to_string(application);
    const auto userNumber = std::to_string(user.number);
    ::setenv("PKEXEC_UID", userNumber.c_str(), 1);
    constexpr const char* program = "/usr/local/libexec/brimvault/BrimvaultCleaner";
    ::execl(program, program, name.c_str(), number.c_str(), nullptr);
    ::_exit(126);
}

// As a child of the calling process; it is told to serve that one, or another.
pid_t startTool(pid_t application = ::getpid()) {
    const pid_t tool = ::fork();
    if (tool == 0) {
        becomeTool(application);
    }
    return tool;
}

// The exit code of the tool, or how it ended otherwise.
std::string endOf(pid_t tool) {
    int status = 0;
    if (!comes([&] { return ::waitpid(tool, &status, WNOHANG) == tool; })) {
        ::kill(tool, SIGKILL);
        return "it does not end";
    }
    return WIFEXITED(status) ? std::to_string(WEXITSTATUS(status)) : "it was killed";
}

class Client {
public:
    /// Waits until the tool listens.
    bool connect() {
        return comes([this] {
            connection_ = platform::ToolConnection::connect(place());
            return connection_ != nullptr;
        });
    }
    bool send(std::string_view bytes) { return connection_->send(bytes); }
    /// The operation of the next message but `working`; none when the peer has closed.
    std::optional<Operation> next() {
        while (true) {
            const auto message = reader_.take();
            if (message && message->operation != Operation::working) {
                return message->operation;
            }
            const auto bytes = message ? std::string() : connection_->receive(std::chrono::seconds(60)).value_or("");
            if (!message && bytes.empty()) {
                return std::nullopt;
            }
            reader_.feed(bytes);
        }
    }
    bool isGreeted() { return connect() && next() == Operation::ready; }
    std::optional<Operation> ask(Operation operation, const std::string& path) {
        return send(*cleaner::encode(operation, path)) ? next() : std::nullopt;
    }

private:
    std::unique_ptr<platform::ToolConnection> connection_;
    cleaner::MessageReader reader_;
};

// Over the only connection of this process to a root process.
void sendWithDescriptor(std::string bytes) {
    constexpr int maxDescriptor = 256;
    for (int number = 3; number < maxDescriptor; ++number) {
        ucred peer{1, 1, 1};
        socklen_t size = sizeof peer;
        if (::getsockopt(number, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.uid != 0) {
            continue;
        }
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof number)> control{};
        iovec content{bytes.data(), bytes.size()};
        msghdr message{nullptr, 0, &content, 1, control.data(), control.size(), 0};
        *CMSG_FIRSTHDR(&message) = {CMSG_LEN(sizeof number), SOL_SOCKET, SCM_RIGHTS};
        std::memcpy(CMSG_DATA(CMSG_FIRSTHDR(&message)), &number, sizeof number);
        (void)::sendmsg(number, &message, 0);
    }
}

// Whether another process of the same user is refused.
std::string asOtherProcess() {
    const pid_t other = ::fork();
    if (other == 0) {
        Client client;
        ::_exit(client.connect() && !client.next() ? 0 : 1);
    }
    return endOf(other) == "0" ? "" : "another process was served";
}

// A process that reuses the ID of one that has ended; waits to be killed.
pid_t startWithNumber(pid_t number) {
    for (int tries = 0; tries < 1000; ++tries) {
        std::ofstream("/proc/sys/kernel/ns_last_pid") << number - 1;
        const pid_t process = ::fork();
        if (process == 0) {
            ::pause();
            ::_exit(0);
        }
        if (process == number) {
            return process;
        }
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
    return 0;
}

void makeSocketFolder(uid_t owner) {
    const auto folder = cleaner::socketFolder(user.number);
    fs::create_directories(folder);
    (void)!::chown(folder.c_str(), owner, 0);
}

class RootRemover : public testing::Test {
protected:
    void SetUp() override {
        makeHome(user);
        makeLockedFolder(user, "item");
        makeLockedFolder(user, "other");
    }
};

}  // namespace

TEST_F(RootRemover, ServesTheProcessThatHasStartedItAndOnlyOnce) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        const pid_t tool = startTool();
        become(user);
        const auto turnedAway = asOtherProcess();
        Client client;
        if (!turnedAway.empty() || !client.isGreeted()) {
            return turnedAway + " the application is not served";
        }
        if (platform::ToolConnection::connect(place())) {
            return "a second connection is possible";
        }
        if (client.ask(Operation::removeFileAtPath, caches() / "item") != Operation::done ||
            fs::exists(caches() / "item")) {
            return "the item is not removed";
        }
        client = Client();
        return endOf(tool) == "0" ? "" : "it does not end with its client";
    });
}

TEST_F(RootRemover, ServesNoOtherUserAndNotTheAdministrator) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        const pid_t tool = startTool();
        const pid_t other = ::fork();
        if (other == 0) {
            become(deniedUser);
            const bool cannotEnter = ::access(place().c_str(), F_OK) != 0 && errno == EACCES;
            ::_exit(cannotEnter && !platform::ToolConnection::connect(place()) ? 0 : 1);
        }
        Client administrator;
        if (!administrator.connect() || administrator.next() || endOf(other) != "0") {
            return "another user is served";
        }
        become(user);
        const bool isServed = Client().isGreeted();
        return isServed && endOf(tool) == "0" ? "" : "its own user is not";
    });
}

TEST_F(RootRemover, RefusesANumberThatIsNotThatOfItsParent) {
    EXPECT_WELL_IN_CHILD([] {
        const auto other = startIdler(user);
        return endOf(startTool(other)) == "1" && endOf(startTool(1)) == "1" ? "" : "it starts";
    });
}

// The application ends before the tool opens its pidfd, and another process of its user gets its process ID.
TEST_F(RootRemover, RefusesAProcessThatHasTakenOverTheNumber) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        int go[2];
        int told[2];
        if (::pipe(go) != 0 || ::pipe(told) != 0 || ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0) {
            return "no pipes";
        }
        const pid_t application = ::fork();
        if (application == 0) {
            const pid_t self = ::getpid();
            const pid_t tool = ::fork();
            char byte = 0;
            if (tool == 0 && ::read(go[0], &byte, 1) == 1) {
                becomeTool(self);
            }
            (void)!::write(told[1], &tool, sizeof tool);
            ::_exit(0);
        }
        pid_t tool = 0;
        ::waitpid(application, nullptr, 0);
        const pid_t next = ::read(told[0], &tool, sizeof tool) > 0 ? startWithNumber(application) : 0;
        (void)!::write(go[1], "g", 1);
        const auto end = endOf(tool);
        if (next == 0) {
            return cannotTry("a process cannot be given a number");
        }
        ::kill(next, SIGKILL);
        return end == "1" ? "" : "it starts: " + end;
    });
}

TEST_F(RootRemover, EndsWhenTheApplicationEndsBeforeItHasConnected) {
    int told[2];
    ASSERT_EQ(::pipe(told), 0);
    const pid_t application = ::fork();
    if (application == 0) {
        const pid_t tool = startTool();
        become(user);
        const bool isThere = comes([] { return fs::exists(place()); });
        (void)!::write(told[1], &tool, isThere ? sizeof tool : 0);
        ::_exit(0);
    }
    ::close(told[1]);
    pid_t tool = 0;
    ASSERT_EQ(::read(told[0], &tool, sizeof tool), static_cast<ssize_t>(sizeof tool));
    ::close(told[0]);
    ASSERT_EQ(::waitpid(application, nullptr, 0), application);
    EXPECT_TRUE(comes([&] { return !isAlive(tool); }, std::chrono::seconds(5)));
    EXPECT_FALSE(fs::exists(place()));
}

TEST_F(RootRemover, LeavesANameThatIsTaken) {
    makeSocketFolder(0);
    writeFile(user.home() / "letter", "precious");
    fs::permissions(user.home() / "letter", static_cast<fs::perms>(0640));
    for (const bool isLink : {false, true}) {
        if (isLink) {
            fs::create_symlink(user.home() / "letter", place());
        } else {
            writeFile(place(), "taken");
        }
        EXPECT_WELL_IN_CHILD([] { return endOf(startTool()) == "1" ? "" : "it starts"; });
        EXPECT_TRUE(fs::exists(place()));
        fs::remove(place());
    }
    EXPECT_EQ(fs::status(user.home() / "letter").permissions(), static_cast<fs::perms>(0640));
}

TEST_F(RootRemover, RefusesASocketFolderThatIsNotRoots) {
    makeSocketFolder(user.number);
    EXPECT_WELL_IN_CHILD([] { return endOf(startTool()) == "1" ? "" : "it starts"; });
    fs::remove(cleaner::socketFolder(user.number));
}

TEST_F(RootRemover, LeavesTheSocketFolderToRoot) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        startTool();
        become(user);
        const bool isServed = Client().isGreeted();
        const auto folder = cleaner::socketFolder(user.number);
        const bool mayWrite = ::access(folder.c_str(), W_OK) == 0 || ::chmod(folder.c_str(), 0777) == 0;
        return isServed && !mayWrite ? "" : "the user may change it";
    });
}

// A process that listens on the socket without root's rights is not taken for the tool.
TEST_F(RootRemover, IsNotMistakenForAProgramOfTheUsers) {
    const auto elsewhere = user.home() / "socket";
    fs::remove(elsewhere);  // of an earlier run
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        elsewhere.native().copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        if (::bind(listener, generic, sizeof address) != 0 || ::listen(listener, 1) != 0) {
            return "it cannot listen";
        }
        const bool isMet = platform::ToolConnection::connect(elsewhere) != nullptr;
        const int other = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ::unlink(elsewhere.c_str());
        become(user);
        if (::bind(other, generic, sizeof address) != 0 || ::listen(other, 1) != 0) {
            return "it cannot listen as the user";
        }
        return isMet && !platform::ToolConnection::connect(elsewhere) ? "" : "it is taken for the tool";
    });
}

TEST_F(RootRemover, EndsAtWhatIsNoRequest) {
    const auto request = *cleaner::encode(Operation::removeFileAtPath, (caches() / "item").native());
    std::vector<std::string> streams = {std::string(4, '\0'),
                                        std::string("\xff\xff\xff\xff", 4),
                                        std::string("\x00\x00\x20\x01", 4),
                                        "GET / HTTP/1.1\r\n\r\n",
                                        *cleaner::encode(Operation::done),
                                        *cleaner::encode(Operation::ready, "1"),
                                        std::string("\x00\x00\x00\x01\x63", 5),
                                        *cleaner::encode(Operation::keepFolderAtPath, "relative"),
                                        *cleaner::encode(Operation::keepFolderAtPath, "/srv/../run")};
    for (auto& stream : streams) {
        stream += request;  // is never read
    }
    for (const auto& stream : streams) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            const pid_t tool = startTool();
            become(user);
            Client client;
            if (!client.isGreeted() || !client.send(stream)) {
                return "it is not there";
            }
            return !client.next() && endOf(tool) == "0" ? "" : "it goes on";
        });
    }
    EXPECT_TRUE(fs::exists(caches() / "item/2/2"));
}

TEST_F(RootRemover, RefusesWhatIsToBeKept) {
    const std::vector<std::string> kept = {"",
                                           "item",
                                           "./item",
                                           "/",
                                           "//",
                                           caches() / "other/.." / "item",
                                           caches() / "./item",
                                           caches() / "item/",
                                           user.home(),
                                           user.home() / "Library",
                                           caches(),
                                           "/run/home",
                                           "/etc/polkit-1/rules.d/10-brimvault.rules",
                                           "/usr/local/libexec/brimvault/BrimvaultCleaner",
                                           "/run/passwd",
                                           caches() / "link/item",
                                           caches() / "mounted",
                                           caches() / "extra",
                                           (caches() / "item").native() + std::string("\0", 1) + "x"};
    makeLockedFolder(user, "extra");
    makeLockedFolder(user, "mounted");
    ASSERT_EQ(::mount("none", (caches() / "mounted").c_str(), "tmpfs", 0, nullptr), 0);
    writeFile(caches() / "mounted/file", "elsewhere");
    fs::create_directory_symlink(caches(), caches() / "link");
    const auto before = fingerprint(user.home());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        startTool();
        become(user);
        Client client;
        if (!client.isGreeted()) {
            return "it is not there";
        }
        client.send(*cleaner::encode(Operation::keepFolderAtPath, (caches() / "extra").native()));
        for (const auto& path : kept) {
            for (const auto operation : {Operation::removeFileAtPath, Operation::removeToTrashFileAtPath}) {
                if (client.ask(operation, path) != Operation::failed) {
                    return "it does not refuse " + path;
                }
            }
        }
        return "";
    });
    EXPECT_EQ(fingerprint(user.home()), before);
    EXPECT_TRUE(fs::exists("/run/passwd"));
    EXPECT_TRUE(fs::exists("/etc/polkit-1/rules.d/10-brimvault.rules"));
    EXPECT_TRUE(fs::exists("/usr/local/libexec/brimvault/BrimvaultCleaner"));
    ASSERT_EQ(::umount((caches() / "mounted").c_str()), 0);
}

// A process to which the application passes the connected socket is not the application.
TEST_F(RootRemover, TakesNoRequestFromAnotherProcess) {
    for (const bool isDescriptorSent : {false, true}) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            const pid_t tool = startTool();
            become(user);
            Client client;
            if (!client.isGreeted()) {
                return "it is not there";
            }
            const auto request = *cleaner::encode(Operation::removeFileAtPath, (caches() / "item").native());
            if (isDescriptorSent) {
                sendWithDescriptor(request);
            } else if (const pid_t other = ::fork(); other == 0) {
                ::_exit(client.send(request) ? 0 : 1);
            } else if (endOf(other) != "0") {
                return "it cannot be tried";
            }
            return !client.next() && endOf(tool) == "0" ? "" : "it goes on";
        });
    }
    EXPECT_TRUE(fs::exists(caches() / "item/2/2"));
}

// Attacks that once let the user remove what is not theirs: the home renamed and a symbolic link in its place, a mount
// of the administrator's inside it, or a user ID that belongs to another user behind a closed folder.
TEST_F(RootRemover, RemovesNothingBeyondWhatIsTheUsers) {
    const fs::path precious = "/srv/precious";
    const auto mounted = caches() / "mounted";
    if (::mount("none", "/srv", "tmpfs", 0, nullptr) != 0) {
        GTEST_SKIP() << "there can be no folder of the system for it";
    }
    for (const auto& file :
         {precious / "Library/Caches/item/file", precious / "tool", fs::path("/srv/closed/user/item")}) {
        writeFile(file, "precious");
    }
    ASSERT_EQ(::chown("/srv/closed/user", user.number, user.number), 0);
    fs::permissions("/srv/closed", fs::perms::owner_all);
    writeFile(user.home() / "locked/file", "the administrator's");
    fs::create_directory(mounted);
    ASSERT_EQ(::mount(precious.c_str(), mounted.c_str(), nullptr, MS_BIND, nullptr), 0);
    fs::permissions(user.home().parent_path(), fs::perms::all);
    const auto before = fingerprint("/srv");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        startTool();
        become(user);
        Client client;
        const auto moved = user.home().parent_path() / "moved";
        if (!client.isGreeted()) {
            return "it is not there";
        }
        std::string wrong;
        const auto refuses = [&](const fs::path& path) {
            const bool isRefused = client.ask(Operation::removeFileAtPath, path) == Operation::failed;
            wrong += isRefused ? "" : path.native() + " goes ";
        };
        refuses(mounted / "tool");
        refuses(mounted / "Library");
        refuses("/srv/closed/user/item");
        refuses("/srv/closed/user/missing");
        fs::rename(user.home(), moved);
        fs::create_directory_symlink(precious, user.home());
        refuses(caches() / "item");
        refuses(precious / "tool");
        refuses(precious / "Library/Caches/item");
        fs::remove(user.home());
        fs::create_directories(user.home() / "Library");
        fs::rename(moved / "Library/Caches", user.home() / "Library/Caches");
        refuses(user.home() / "Library");
        const bool isStillHome = client.ask(Operation::removeFileAtPath, moved / "locked") == Operation::done;
        fs::rename(user.home() / "Library/Caches", moved / "Library/Caches");
        fs::remove_all(user.home());
        fs::rename(moved, user.home());
        return wrong + (isStillHome ? "" : "what was the home is not any more");
    });
    EXPECT_EQ(fingerprint("/srv"), before);
    EXPECT_EQ(::umount(mounted.c_str()), 0);
    fs::permissions(user.home().parent_path(), static_cast<fs::perms>(0755));
    EXPECT_EQ(::umount("/srv"), 0);
}

// Keeping a path with a symbolic link of the user's does not reveal whether its target exists.
TEST_F(RootRemover, TellsNothingOfFoldersThatAreClosed) {
    ASSERT_EQ(::mount("none", "/srv", "tmpfs", MS_NOSUID, "mode=700"), 0);
    fs::create_directory("/srv/there");
    for (const std::string folder : {"there", "missing"}) {
        makeLockedFolder(user, "item");
        fs::remove(user.home() / "Downloads");
        fs::create_directory_symlink("/srv/" + folder + "/../.." + (caches() / "item").native(),
                                     user.home() / "Downloads");
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            startTool();
            become(user);
            Client client;
            if (!client.isGreeted()) {
                return "it is not there";
            }
            client.send(*cleaner::encode(Operation::keepFolderAtPath, "/srv/" + folder + "/" + std::string(300, 'n')));
            client.send(*cleaner::encode(Operation::keepFolderAtPath, (user.home() / "Downloads/2").native()));
            return client.ask(Operation::removeFileAtPath, caches() / "item") == Operation::done ? "" : "it refuses";
        });
    }
    fs::remove(user.home() / "Downloads");
    EXPECT_EQ(::umount("/srv"), 0);
}

// A FUSE volume of the user's refuses even root; nothing else is affected by it.
TEST_F(RootRemover, ServesAUserWhoseDownloadsNobodyElseMayEnter) {
    const int server = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const auto downloads = user.home() / "Downloads";
    const auto number = std::to_string(user.number);
    const auto options = "fd=" + std::to_string(server) + ",rootmode=40000,user_id=" + number + ",group_id=" + number;
    fs::create_directory(downloads);
    if (server < 0 || ::mount("volume", downloads.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) != 0) {
        GTEST_SKIP() << "there are no file systems of users";
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        startTool();
        become(user);
        Client client;
        if (!client.isGreeted()) {
            return "it does not start";
        }
        const bool isKept = client.ask(Operation::removeFileAtPath, downloads) == Operation::failed &&
                            client.ask(Operation::removeFileAtPath, downloads / "item") == Operation::failed;
        const bool goes = client.ask(Operation::removeFileAtPath, caches() / "item") == Operation::done;
        return std::string(isKept ? "" : "what is on the volume is not kept ") + (goes ? "" : "it removes nothing");
    });
    EXPECT_EQ(::umount2(downloads.c_str(), MNT_DETACH), 0);
    ::close(server);
}

// The user exchanges the item, its parent or an inner folder for a symbolic link to what only root may change, while
// the tool removes it again and again.
TEST_F(RootRemover, LosesNothingToAUserWhoExchangesNames) {
    constexpr int wanted = 20'000;
    const fs::path precious = "/srv/precious";
    if (::mount("none", "/srv", "tmpfs", 0, nullptr) != 0) {
        GTEST_SKIP() << "there can be no folder of the system for it";
    }
    for (const char* file : {"file", "item/file", "item/inner/file"}) {
        writeFile(precious / file, "precious");
    }
    const auto before = fingerprint(precious);
    for (const std::string exchanged : {"tree", "tree/item", "tree/item/inner"}) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            startTool();
            become(user);
            Client client;
            const auto item = user.home() / "tree/item";
            const auto link = user.home() / "link";
            int exchanges = client.isGreeted() ? 0 : wanted;
            int removals = 0;
            while (exchanges < wanted) {
                fs::remove_all(user.home() / "tree");
                fs::remove_all(link);
                writeFile(item / "inner/file", "the user's");
                fs::create_directory_symlink(precious / fs::path(exchanged).lexically_relative("tree"), link);
                const Exchanger exchanger(user.home() / exchanged, link);
                (void)comes([&] { return exchanger.exchanges() > 20; });
                for (int requests = 0; requests < 10; ++requests) {
                    removals += client.ask(Operation::removeFileAtPath, item) == Operation::done ? 1 : 0;
                }
                exchanges += exchanger.exchanges();
            }
            return removals > 0 ? "" : "nothing was removed";
        });
        EXPECT_EQ(fingerprint(precious), before) << exchanged;
    }
    EXPECT_EQ(::umount("/srv"), 0);
}

TEST_F(RootRemover, HasGivenUpWhatItDoesNotNeed) {
    int done[2];
    ASSERT_EQ(::pipe(done), 0);  // without O_CLOEXEC: the tool must close it
    const pid_t application = ::fork();
    if (application == 0) {
        startTool();
        become(user);
        Client client;
        (void)!::write(done[1], client.isGreeted() ? "g" : "n", 1);
        ::pause();
    }
    char greeted = 0;
    ASSERT_EQ(::read(done[0], &greeted, 1), 1);
    const auto tool = fs::path("/proc") / std::to_string(std::max(1, toolOf(application)));
    std::map<std::string, std::string> status;
    std::ifstream file(tool / "status");
    for (std::string line; std::getline(file, line);) {
        status[line.substr(0, line.find(':'))] = line.substr(line.find('\t') + 1);
    }
    std::vector<std::string> open;
    for (const auto& entry : fs::directory_iterator(tool / "fd")) {
        open.push_back(fs::read_symlink(entry.path()).native().substr(0, 8));
    }
    std::sort(open.begin(), open.end());
    EXPECT_EQ(greeted, 'g');
    for (const char* set : {"CapEff", "CapPrm", "CapBnd"}) {
        EXPECT_EQ(status[set], "000000000000000a") << set;  // CAP_DAC_OVERRIDE and CAP_FOWNER
    }
    EXPECT_EQ(status["CapInh"], "0000000000000000");
    EXPECT_EQ(status["CapAmb"], "0000000000000000");
    EXPECT_EQ(status["NoNewPrivs"], "1");
    EXPECT_EQ(status["Umask"], "0077");
    EXPECT_EQ(fs::read_symlink(tool / "cwd"), "/");
    // The pidfd of the application, the connection, the home folder, and nothing else.
    EXPECT_EQ(open, (std::vector<std::string>{"/dev/nul", "/dev/nul", "/dev/nul", "/run/hom", "anon_ino", "socket:["}));
    ::kill(application, SIGKILL);
    ::waitpid(application, nullptr, 0);
}

}  // namespace brimvault::tests
