#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>

#include "cleaner-tool/protocol/Protocol.h"
#include "cleaner-tool/protocol/SocketPath.h"
#include "engine/removal/RootRemover.h"
#include "files/NodeStatus.h"
#include "platform/ToolConnection.h"
#include "privileges/Trial.h"
#include "support/ChildProcess.h"

// The installed root remover, started as pkexec starts it, and a client that speaks the wire protocol byte by byte.

namespace brimvault::tests {

namespace {

using cleaner::Operation;
using platform::ToolConnection;

const User& user = mayRemove;
const std::string socketName = "com.quorvel.brimvault.BrimvaultCleaner.123456";

fs::path socketPath() { return cleaner::socketFolder(user.number) / socketName; }
fs::path caches() { return user.caches(); }
std::string request() { return *cleaner::encode(Operation::removeFileAtPath, (caches() / "item").native()); }

// As a child of the calling process; it is told to serve that one, or another.
pid_t startTool(pid_t application = ::getpid()) {
    const pid_t tool = ::fork();
    if (tool == 0) {
        ::setenv("PKEXEC_UID", std::to_string(user.number).c_str(), 1);
        constexpr const char* program = "/usr/local/libexec/brimvault/BrimvaultCleaner";
        ::execl(program, program, socketName.c_str(), std::to_string(application).c_str(), nullptr);
        ::_exit(126);
    }
    return tool;
}

// Whether it ends without having listened, as it would after a timeout, too.
bool refusesToStart(pid_t application = ::getpid()) {
    const pid_t tool = startTool(application);
    bool listens = false;
    (void)comes([&] { return (listens = fs::is_socket(fs::symlink_status(socketPath()))) || ends(tool, {}); });
    return !listens && endOf(tool) == "1";
}

// Waits until the tool listens.
std::unique_ptr<ToolConnection> connect() {
    std::unique_ptr<ToolConnection> connection;
    (void)comes([&] { return (connection = ToolConnection::connect(socketPath())) != nullptr; });
    return connection;
}

// Whether the tool closes the connection without a word.
bool closes(ToolConnection& connection) { return connection.receive(std::chrono::minutes(1)) == std::nullopt; }

class Client : public engine::RootRemover {
public:
    Client() : RootRemover(connect()) {}
    bool isRefused(const fs::path& path) { return !removeFileAtPath(path) && isConnected(); }
    bool isRefusedInTrash(const fs::path& path) { return !removeToTrashFileAtPath(path) && isConnected(); }
};

// For a child process: what the work answers, done with the user's rights alone as the client of a new tool.
std::function<std::string()> served(const std::function<std::string(Client& client)>& work) {
    return [work]() -> std::string {
        startTool();
        become(user);
        Client client;
        return comes([&] { return client.respondsToRemoveFileAtPath(); }) ? work(client) : "the tool is not there";
    };
}

// For a child process: whether the tool closes the connection and ends after the user has sent something.
std::function<std::string()> ended(const std::function<bool(ToolConnection& connection)>& send) {
    return [send]() -> std::string {
        const pid_t tool = startTool();
        become(user);
        const auto connection = connect();
        const bool isGreeted = connection->receive(std::chrono::minutes(1)) == *cleaner::encode(Operation::ready, "2");
        return isGreeted && send(*connection) && closes(*connection) && endOf(tool) == "0" ? "" : "it goes on";
    };
}

// With a descriptor beside the bytes, over the only socket of this process.
bool sendWithDescriptor(std::string bytes) {
    constexpr int passed = STDOUT_FILENO;
    constexpr int maxDescriptor = 256;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof passed)> control{};
    iovec content{bytes.data(), bytes.size()};
    msghdr message{nullptr, 0, &content, 1, control.data(), control.size(), 0};
    *CMSG_FIRSTHDR(&message) = {CMSG_LEN(sizeof passed), SOL_SOCKET, SCM_RIGHTS};
    std::memcpy(CMSG_DATA(CMSG_FIRSTHDR(&message)), &passed, sizeof passed);
    int number = STDERR_FILENO + 1;
    while (number < maxDescriptor && ::sendmsg(number, &message, 0) < 0) {
        ++number;
    }
    return number < maxDescriptor;
}

// Listens at the path, and tells whether that is met as the tool.
std::string listenAt(const fs::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    ::unlink(path.c_str());  // of before
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 1) != 0) {
        return "it cannot listen";
    }
    return ToolConnection::connect(path) ? "met" : "not met";
}

void makeSocketFolder(uid_t owner) {
    const auto folder = cleaner::socketFolder(user.number);
    fs::create_directories(folder);
    (void)!::chown(folder.c_str(), owner, 0);
}

// With folders that only root may change in /srv.
class RootRemover : public testing::Test {
protected:
    void SetUp() override {
        makeHome(user);
        makeLockedFolder(user, "item");
        ASSERT_EQ(::mount("none", "/srv", "tmpfs", 0, nullptr), 0);
    }
    void TearDown() override { EXPECT_EQ(::umount("/srv"), 0); }
};

}  // namespace

TEST_F(RootRemover, ServesTheProcessThatHasStartedItAloneAndOnlyOnce) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        const pid_t tool = startTool();
        if (!closes(*connect())) {
            return "the administrator is served";
        }
        const bool isClosedToOthers = holdsInOtherProcess([] {
            become(deniedUser);
            return ::access(socketPath().c_str(), F_OK) != 0 && errno == EACCES;
        });
        become(user);
        if (!isClosedToOthers || !holdsInOtherProcess([] { return closes(*connect()); })) {
            return "another user or another process is served";
        }
        const auto folder = cleaner::socketFolder(user.number);
        if (::access(folder.c_str(), W_OK) == 0 || ::chmod(folder.c_str(), 0777) == 0) {
            return "the user may change the socket's folder";
        }
        {
            Client client;
            if (!comes([&] { return client.respondsToRemoveFileAtPath(); }) || ToolConnection::connect(socketPath())) {
                return "the application is not served, or twice";
            }
            if (!client.removeFileAtPath(caches() / "item") || fs::exists(caches() / "item")) {
                return "the item is not removed";
            }
        }
        return endOf(tool) == "0" ? "" : "it does not end with its client";
    });
}

TEST_F(RootRemover, EndsWhenTheApplicationEndsBeforeItHasConnected) {
    const pid_t application = ::fork();
    if (application == 0) {
        startTool();
        pauseUntilParentEnds();
    }
    const bool listens = comes([] { return fs::exists(socketPath()); });
    const pid_t tool = toolOf(application);
    ::kill(application, SIGKILL);
    ::waitpid(application, nullptr, 0);
    EXPECT_TRUE(listens && tool != 0);
    EXPECT_TRUE(ends(tool, std::chrono::seconds(5)));
    EXPECT_FALSE(fs::exists(socketPath()));
}

TEST_F(RootRemover, DoesNotStartForAnotherThanItsParentNorWhereItsSocketIsNotSafe) {
    EXPECT_WELL_IN_CHILD([] { return refusesToStart(::getppid()) && refusesToStart(1) ? "" : "it starts"; });
    const auto letter = user.home() / "letter";
    writeFile(letter, "precious");
    fs::permissions(letter, static_cast<fs::perms>(0640));
    makeSocketFolder(0);
    fs::create_symlink(letter, socketPath());
    EXPECT_WELL_IN_CHILD([] { return refusesToStart() ? "" : "it starts"; });
    EXPECT_TRUE(fs::is_symlink(socketPath()));
    EXPECT_EQ(fs::status(letter).permissions(), static_cast<fs::perms>(0640));
    fs::remove(socketPath());
    makeSocketFolder(user.number);
    EXPECT_WELL_IN_CHILD([] { return refusesToStart() ? "" : "it starts"; });
    fs::remove(cleaner::socketFolder(user.number));
}

// A process that listens on the socket without root's rights is not taken for the tool.
TEST_F(RootRemover, IsNotMistakenForAProgramOfTheUsers) {
    EXPECT_WELL_IN_CHILD([] {
        const auto asRoot = listenAt(user.home() / "socket");
        become(user);
        const auto asUser = listenAt(user.home() / "socket");
        return asRoot == "met" && asUser == "not met" ? "" : asRoot + " as root, " + asUser + " as the user";
    });
}

TEST_F(RootRemover, EndsAtWhatIsNoRequest) {
    for (const auto& stream :
         {std::string("GET / HTTP/1.1\r\n\r\n"), *cleaner::encode(Operation::done),
          *cleaner::encode(Operation::ready, "2"), *cleaner::encode(Operation::keepFolderAtPath, "relative"),
          *cleaner::encode(Operation::expectFolder, "1"),
          *cleaner::encode(Operation::keepFolderAtPath, "/srv/../run")}) {
        SCOPED_TRACE(stream);
        // What follows it is never read.
        EXPECT_WELL_IN_CHILD(ended([&](ToolConnection& connection) { return connection.send(stream + request()); }));
    }
    EXPECT_TRUE(fs::exists(caches() / "item/2/2"));
}

// A process to which the application passes the connected socket is not the application.
TEST_F(RootRemover, TakesNoRequestFromAnotherProcessNorADescriptor) {
    EXPECT_WELL_IN_CHILD(ended(
        [](ToolConnection& connection) { return holdsInOtherProcess([&] { return connection.send(request()); }); }));
    EXPECT_WELL_IN_CHILD(ended([](ToolConnection& /*connection*/) { return sendWithDescriptor(request()); }));
    EXPECT_TRUE(fs::exists(caches() / "item/2/2"));
}

TEST_F(RootRemover, MovesIntoTheUsersTrash) {
    const auto trash = user.home() / ".local/share/Trash";
    makeTrash(user);
    EXPECT_WELL_IN_CHILD(served([&](Client& client) {
        const auto place = client.removeToTrashFileAtPath(caches() / "item");
        const bool isReadable = !contentOf(trash / "info/item.trashinfo").empty();
        return place == trash / "files/item" && isReadable ? "" : "it is elsewhere, or without a record";
    }));
    EXPECT_TRUE(fs::exists(trash / "files/item/0/0"));
}

TEST_F(RootRemover, HasGivenUpWhatItDoesNotNeed) {
    int done[2];
    ASSERT_EQ(::pipe(done), 0);  // without O_CLOEXEC: the tool must close it
    const pid_t application = ::fork();
    if (application == 0) {
        startTool();
        become(user);
        const auto connection = connect();
        (void)!::write(done[1], connection && connection->receive(std::chrono::minutes(1)) ? "g" : "n", 1);
        pauseUntilParentEnds();
    }
    char greeted = 0;
    ASSERT_EQ(::read(done[0], &greeted, 1), 1);
    EXPECT_EQ(greeted, 'g');
    const auto tool = fs::path("/proc") / std::to_string(std::max(1, toolOf(application)));
    const auto status = contentOf(tool / "status");
    for (const char* line : {"CapEff:\t000000000000000a",  // CAP_DAC_OVERRIDE and CAP_FOWNER
                             "CapPrm:\t000000000000000a", "CapBnd:\t000000000000000a", "CapInh:\t0000000000000000",
                             "CapAmb:\t0000000000000000", "NoNewPrivs:\t1", "Umask:\t0077"}) {
        EXPECT_NE(status.find(std::string("\n") + line + "\n"), std::string::npos) << line << " in\n" << status;
    }
    std::vector<std::string> open;
    for (const auto& entry : fs::directory_iterator(tool / "fd")) {
        open.push_back(fs::read_symlink(entry.path()).native().substr(0, 8));
    }
    std::sort(open.begin(), open.end());
    // The pidfd of the application, the connection, the home folder, and nothing else.
    EXPECT_EQ(open, (std::vector<std::string>{"/dev/nul", "/dev/nul", "/dev/nul", "/run/hom", "anon_ino", "socket:["}));
    EXPECT_EQ(fs::read_symlink(tool / "cwd"), "/");
    ::kill(application, SIGKILL);
    ::waitpid(application, nullptr, 0);
}

TEST_F(RootRemover, RefusesWhatIsToBeKept) {
    const fs::path rules = "/etc/polkit-1/rules.d/10-brimvault.rules";
    const fs::path tool = "/usr/local/libexec/brimvault/BrimvaultCleaner";
    makeLockedFolder(user, "extra");
    makeTrash(user);
    fs::create_directory(user.home() / "Downloads");
    for (const char* file : {"Unterlagen/letter", ".var/app/org.App/cache/item", ".ssh/keys"}) {
        writeFile(user.home() / file, "precious");
    }
    fs::create_directory("/srv/shared");
    fs::create_directory_symlink(caches(), caches() / "link");
    const auto before = fingerprint(user.home());
    EXPECT_WELL_IN_CHILD(served([&](Client& client) {
        std::string wrong;
        client.keepFolderAtPath(caches() / "extra");
        for (const fs::path& path :
             {fs::path("item"), caches() / "item" / "", caches() / "extra/../item", caches() / "link/item",
              caches() / "extra", caches(), user.home() / "Library", user.home() / "Downloads", user.home(),
              user.home() / "Unterlagen", user.home() / ".var/app/org.App/cache", user.home() / ".ssh/keys",
              fs::path("/run/home"), fs::path("/srv/shared"), rules, tool,
              fs::path((caches() / "item").native() + std::string("\0", 1) + "x")}) {
            const bool isRefused = client.isRefused(path) && client.isRefusedInTrash(path);
            wrong += isRefused ? "" : "it does not refuse " + path.native() + " ";
        }
        return wrong;
    }));
    EXPECT_EQ(fingerprint(user.home()), before);
    EXPECT_TRUE(fs::exists(rules) && fs::exists(tool) && fs::exists("/srv/shared"));
}

// Attacks that once let the user remove what is not theirs: the home renamed and a symbolic link in its place, or a
// user ID that belongs to another user behind a closed folder.
TEST_F(RootRemover, RemovesNothingBeyondWhatIsTheUsers) {
    const fs::path precious = "/srv/precious";
    const auto moved = user.home().parent_path() / "moved";
    for (const auto& file :
         {precious / "Library/Caches/item/file", precious / "tool", fs::path("/srv/closed/user/item")}) {
        writeFile(file, "precious");
    }
    ASSERT_EQ(::chown("/srv/closed/user", user.number, user.number), 0);
    fs::permissions("/srv/closed", fs::perms::owner_all);
    writeFile(user.home() / "Library/locked/file", "the administrator's");
    fs::permissions(user.home().parent_path(), fs::perms::all);
    const auto before = fingerprint("/srv");
    EXPECT_WELL_IN_CHILD(served([&](Client& client) {
        std::string wrong;
        const auto refuses = [&](const fs::path& path) {
            wrong += client.isRefused(path) ? "" : path.native() + " goes ";
        };
        refuses("/srv/closed/user/item");
        refuses("/srv/closed/user/missing");
        fs::rename(user.home(), moved);
        fs::create_directory_symlink(precious, user.home());
        refuses(caches() / "item");
        refuses(precious / "tool");
        refuses(precious / "Library/Caches/item");
        wrong += client.removeFileAtPath(moved / "Library/locked") ? "" : "what was the home is not any more";
        fs::remove(user.home());
        fs::rename(moved, user.home());
        return wrong;
    }));
    EXPECT_EQ(fingerprint("/srv"), before);
    fs::permissions(user.home().parent_path(), static_cast<fs::perms>(0755));
}

// As while the user is asked: another folder of his is put in the place of the one that the item was found in.
TEST_F(RootRemover, RemovesFromNoOtherFolderThanWasMeant) {
    const auto meant = files::statusOf(caches())->identity;
    fs::rename(caches(), user.home() / "Library/away");
    fs::create_directory(caches());
    ASSERT_EQ(::chown(caches().c_str(), user.number, user.number), 0);
    makeLockedFolder(user, "item");
    EXPECT_WELL_IN_CHILD(served([&](Client& client) {
        const bool isRefused = !client.removeFileAtPath(caches() / "item", meant) && client.isConnected();
        return isRefused ? "" : "it removes from another folder";
    }));
    EXPECT_TRUE(fs::exists(caches() / "item/0"));
}

// Keeping a path with a symbolic link of the user's does not reveal whether its target exists.
TEST_F(RootRemover, TellsNothingOfFoldersThatAreClosed) {
    const fs::path closed = "/srv/closed";
    fs::create_directories(closed / "there");
    fs::permissions(closed, fs::perms::owner_all);
    for (const char* folder : {"there", "missing"}) {
        makeLockedFolder(user, "item");
        fs::remove(user.home() / "Downloads");
        fs::create_directory_symlink((closed / folder / "../../..").native() + (caches() / "item").native(),
                                     user.home() / "Downloads");
        EXPECT_WELL_IN_CHILD(served([&](Client& client) {
            client.keepFolderAtPath(closed / folder / std::string(300, 'n'));
            client.keepFolderAtPath(user.home() / "Downloads/2");
            return client.removeFileAtPath(caches() / "item") ? "" : "it refuses";
        }));
    }
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
    EXPECT_WELL_IN_CHILD(served([&](Client& client) {
        const bool isKept = client.isRefused(downloads) && client.isRefused(downloads / "item");
        const bool goes = client.removeFileAtPath(caches() / "item");
        return std::string(isKept ? "" : "what is on the volume is not kept ") + (goes ? "" : "it removes nothing");
    }));
    EXPECT_EQ(::umount2(downloads.c_str(), MNT_DETACH), 0);
    ::close(server);
}

}  // namespace brimvault::tests
