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

/// A process that holds the path open until this object ends, to read it or to write to it; or works in it, or runs it
/// (a program like sleep).
class OpenedElsewhere {
public:
    enum class As { file, writtenFile, workingFolder, program };
    explicit OpenedElsewhere(const std::filesystem::path& path, As what = As::file) {
        int ready[2] = {};
        EXPECT_EQ(::pipe2(ready, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0) {
            if (what == As::program) {
                ::execl(path.c_str(), path.c_str(), "1000", nullptr);
                ::_exit(1);
            }
            const bool isOpen = what == As::workingFolder
                                    ? ::chdir(path.c_str()) == 0
                                    : ::open(path.c_str(), what == As::file ? O_RDONLY : O_WRONLY) >= 0;
            (void)!::write(ready[1], isOpen ? "y" : "n", 1);
            ::pause();
            ::_exit(0);
        }
        ::close(ready[1]);
        char answer = 'n';
        const auto read = ::read(ready[0], &answer, 1);  // a program that is started closes the pipe
        EXPECT_TRUE(what == As::program ? read == 0 : read == 1 && answer == 'y');
        ::close(ready[0]);
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
