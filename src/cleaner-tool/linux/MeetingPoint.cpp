#include "cleaner-tool/MeetingPoint.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

namespace {

constexpr mode_t enteredByAll = 0755;
constexpr mode_t enteredByOwner = 0500;

// The folder of the folder, which belongs to the administrator.
std::optional<files::DirectoryHandle> openCommonFolder(const std::filesystem::path& common) {
    if (::mkdir(common.c_str(), enteredByAll) == 0) {
        (void)::chmod(common.c_str(), enteredByAll);  // whatever the mode mask is
    }
    auto handle = files::DirectoryHandle::open(common);
    constexpr std::uint32_t writtenByOthers = 022;
    if (!handle || handle->status().owner != 0 || (handle->status().permissions & writtenByOthers) != 0) {
        return std::nullopt;
    }
    return std::move(*handle);
}

// The place under the name, for as long as it is needed. What is there already is left alone.
class MeetingPoint {
public:
    MeetingPoint(const std::filesystem::path& folder, const std::string& name)
        : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        const std::string path = folder / name;
        if (!listener_.isOpen() || path.size() >= sizeof address_.sun_path) {
            return;
        }
        address_.sun_family = AF_UNIX;
        std::memcpy(address_.sun_path, path.data(), path.size());
        constexpr int waitingClients = 8;
        // Whoever enters the folder may connect. Not changed after the fact: the folder's owner could put a link to
        // another file under the name meanwhile, and that would be changed.
        constexpr mode_t readAndWritten = 0111;
        const mode_t before = ::umask(readAndWritten);
        isBound_ = ::bind(listener_.number(), generic(), sizeof address_) == 0;
        ::umask(before);
        isOpen_ = isBound_ && ::listen(listener_.number(), waitingClients) == 0;
    }
    MeetingPoint(const MeetingPoint&) = delete;
    MeetingPoint& operator=(const MeetingPoint&) = delete;
    ~MeetingPoint() {
        if (isBound_) {
            ::unlink(address_.sun_path);
        }
    }

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    [[nodiscard]] int descriptor() const { return listener_.number(); }

private:
    [[nodiscard]] const sockaddr* generic() const { return reinterpret_cast<const sockaddr*>(&address_); }

    Descriptor listener_;
    sockaddr_un address_{};
    bool isBound_ = false;
    bool isOpen_ = false;
};

// As long as the application has not ended, nobody else has its number or had it when connecting.
bool isClient(int connection, const Client& client) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == client.user &&
           peer.pid == client.application.number() && !client.application.hasEnded();
}

}  // namespace

bool prepareMeetingFolder(const std::filesystem::path& folder, uid_t user) {
    const auto common = openCommonFolder(folder.parent_path());
    if (!common) {
        return false;
    }
    const auto name = folder.filename();
    if (::mkdirat(common->descriptor(), name.c_str(), enteredByOwner) == 0 &&
        ::fchownat(common->descriptor(), name.c_str(), user, 0, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    const auto status = files::statusAt(common->descriptor(), name.c_str());
    constexpr std::uint32_t notOwner = 077;
    return status && status->kind == files::NodeKind::directory && status->owner == user &&
           (status->permissions & notOwner) == 0;
}

Descriptor awaitClient(const std::filesystem::path& folder, const std::string& name, const Client& client,
                       std::chrono::milliseconds patience) {
    const MeetingPoint point(folder, name);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (point.isOpen()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd events[] = {{point.descriptor(), POLLIN, 0}, {client.application.descriptor(), POLLIN, 0}};
        if (left.count() <= 0 || ::poll(events, 2, static_cast<int>(left.count())) <= 0 || events[1].revents != 0) {
            return {};
        }
        Descriptor connection(::accept4(point.descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (connection.isOpen() && isClient(connection.number(), client)) {
            return connection;
        }
    }
    return {};
}

}  // namespace brimvault::cleaner
