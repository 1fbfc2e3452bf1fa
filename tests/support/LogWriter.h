#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string_view>

namespace brimvault::tests {

/// A process that has written to a file, through the descriptor that it keeps until this object ends.
class LogWriter {
public:
    static constexpr std::string_view line = "another line\n";
    static constexpr std::size_t written = 1024UL * 1024;  ///< bytes, at first

    /// `flags` are added to O_WRONLY.
    explicit LogWriter(const std::filesystem::path& file, int flags = O_APPEND) {
        int orders[2] = {};
        int answers[2] = {};
        EXPECT_EQ(::pipe2(orders, O_CLOEXEC), 0);
        EXPECT_EQ(::pipe2(answers, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0) {
            ::close(orders[1]);
            writeAsOrdered(::open(file.c_str(), O_WRONLY | O_CREAT | flags, 0600), orders[0], answers[1]);
        }
        ::close(orders[0]);
        ::close(answers[1]);
        order_ = orders[1];
        answer_ = answers[0];
        EXPECT_TRUE(isAnsweredWell());
    }
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;
    ~LogWriter() {
        ::close(order_);
        ::close(answer_);
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

    /// Has it write a line; whether it could.
    [[nodiscard]] bool writesOn() const { return ::write(order_, "w", 1) == 1 && isAnsweredWell(); }

private:
    // In the child, which calls nothing but the system.
    [[noreturn]] static void writeAsOrdered(int file, int orders, int answers) {
        static constexpr char block[4096] = {'x'};
        bool isWell = file >= 0;
        for (std::size_t count = 0; count < written; count += sizeof block) {
            isWell = isWell && ::write(file, block, sizeof block) == sizeof block;
        }
        for (char order = 0;;) {
            (void)!::write(answers, isWell ? "y" : "n", 1);
            if (::read(orders, &order, 1) != 1) {
                ::_exit(0);
            }
            isWell = ::write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size());
        }
    }
    [[nodiscard]] bool isAnsweredWell() const {
        char answer = 'n';
        return ::read(answer_, &answer, 1) == 1 && answer == 'y';
    }

    pid_t process_ = -1;
    int order_ = -1;
    int answer_ = -1;
};

}  // namespace brimvault::tests
