#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "files/FileDescriptor.h"

namespace brimvault::tests {

inline void makeSocket(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    const files::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

/// A process that holds the file open until this object ends.
class OpenedElsewhere {
public:
    explicit OpenedElsewhere(const std::filesystem::path& file) {
        int ready[2] = {};
        EXPECT_EQ(::pipe(ready), 0);
        process_ = ::fork();
        if (process_ == 0) {
            const bool isOpen = ::open(file.c_str(), O_RDONLY) >= 0;
            (void)!::write(ready[1], isOpen ? "y" : "n", 1);
            ::pause();
            ::_exit(0);
        }
        char answer = 'n';
        EXPECT_TRUE(::read(ready[0], &answer, 1) == 1 && answer == 'y');
        ::close(ready[0]);
        ::close(ready[1]);
    }
    OpenedElsewhere(const OpenedElsewhere&) = delete;
    OpenedElsewhere& operator=(const OpenedElsewhere&) = delete;
    ~OpenedElsewhere() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    [[nodiscard]] pid_t process() const { return process_; }

private:
    pid_t process_;
};

}  // namespace brimvault::tests
