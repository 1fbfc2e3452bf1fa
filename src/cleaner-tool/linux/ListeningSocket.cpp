#include "cleaner-tool/ListeningSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "cleaner-tool/linux/AccessList.h"

namespace brimvault::cleaner {

namespace {

struct AccessList {
    std::uint32_t version;
    std::array<AccessEntry, 5> entries;
};

static_assert(sizeof(AccessList) == 44);  // no padding: written as bytes

// All permissions for the owner, search permission for one user.
AccessList ownerAndEntryBy(uid_t user) {
    constexpr std::uint16_t all = 7;
    constexpr std::uint16_t enter = 1;
    constexpr std::uint32_t nobody = 0xFFFFFFFF;
    return {accessListVersion,
            {{{AccessTag::owner, all, nobody},
              {AccessTag::user, enter, user},
              {AccessTag::owningGroup, 0, nobody},
              {AccessTag::mask, enter, nobody},
              {AccessTag::others, 0, nobody}}}};
}

// Opens a folder of root's, and makes it if it is missing. No descriptor if anything else has its name.
files::FileDescriptor openRootsFolder(int parent, const std::filesystem::path& name, mode_t permissions) {
    (void)::mkdirat(parent, name.c_str(), permissions);
    files::FileDescriptor folder(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    const bool isOwnedByRoot = folder.isOpen() && ::fstat(folder.number(), &status) == 0 && status.st_uid == 0;
    // The umask applies to mkdirat, and the folder may be older with another mode.
    return isOwnedByRoot && ::fchmod(folder.number(), permissions) == 0 ? std::move(folder) : files::FileDescriptor();
}

// A socket bound to a path, and unlinked at the end. An existing file at that path is left alone.
class ListeningSocket {
public:
    ListeningSocket(const std::filesystem::path& folder, const std::string& name)
        : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        const std::string path = folder / name;
        if (!listener_.isOpen() || path.size() >= sizeof address_.sun_path) {
            return;
        }
        address_.sun_family = AF_UNIX;
        std::memcpy(address_.sun_path, path.data(), path.size());
        constexpr int backlog = 8;
        constexpr mode_t socketUmask = 0111;  // whoever may enter the folder may connect
        const mode_t before = ::umask(socketUmask);
        isBound_ = ::bind(listener_.number(), generic(), sizeof address_) == 0;
        ::umask(before);
        isOpen_ = isBound_ && ::listen(listener_.number(), backlog) == 0;
    }
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;
    ~ListeningSocket() {
        if (isBound_) {
            ::unlink(address_.sun_path);
        }
    }

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    [[nodiscard]] int descriptor() const { return listener_.number(); }

private:
    [[nodiscard]] const sockaddr* generic() const { return reinterpret_cast<const sockaddr*>(&address_); }

    files::FileDescriptor listener_;
    sockaddr_un address_{};
    bool isBound_ = false;
    bool isOpen_ = false;
};

// While the application lives, no other process has its process ID, or had it when the peer connected.
bool isClient(int connection, const Client& client) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == client.user &&
           peer.pid == client.application.id() && !client.application.hasEnded();
}

// From now on each message carries its sender (SCM_CREDENTIALS): a connected socket can be passed to another process.
bool receiveCredentials(int connection) {
    constexpr int yes = 1;
    return ::setsockopt(connection, SOL_SOCKET, SO_PASSCRED, &yes, sizeof yes) == 0;
}

}  // namespace

bool prepareSocketFolder(const std::filesystem::path& folder, uid_t user) {
    constexpr mode_t enteredByAll = 0711;
    constexpr mode_t enteredByOwner = 0700;
    const auto common = openRootsFolder(AT_FDCWD, folder.parent_path(), enteredByAll);
    if (!common.isOpen()) {
        return false;
    }
    const auto own = openRootsFolder(common.number(), folder.filename(), enteredByOwner);
    const auto list = ownerAndEntryBy(user);
    return own.isOpen() && ::fsetxattr(own.number(), accessListName, &list, sizeof list, 0) == 0;
}

files::FileDescriptor acceptClient(const std::filesystem::path& folder, const std::string& name, const Client& client,
                                   std::chrono::milliseconds timeout) {
    const ListeningSocket listener(folder, name);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (listener.isOpen()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd events[] = {{listener.descriptor(), POLLIN, 0}, {client.application.descriptor(), POLLIN, 0}};
        if (left.count() <= 0 || ::poll(events, 2, static_cast<int>(left.count())) <= 0 || events[1].revents != 0) {
            return {};
        }
        files::FileDescriptor connection(::accept4(listener.descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (connection.isOpen() && isClient(connection.number(), client) && receiveCredentials(connection.number())) {
            return connection;
        }
    }
    return {};
}

}  // namespace brimvault::cleaner
