#include "support/TracedRemoval.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <system_error>

#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

namespace {

using files::RemovalEnd;

constexpr int mostMilliseconds = 20'000;  // a removal of some hundred folders takes a second under strace
const std::string ready = "ready\n";

class Pipe {
public:
    Pipe() {
        if (::pipe2(ends_, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeReading();
        closeWriting();
    }
    [[nodiscard]] int reading() const { return ends_[0]; }
    [[nodiscard]] int writing() const { return ends_[1]; }
    void closeReading() { close(ends_[0]); }
    void closeWriting() { close(ends_[1]); }

    // What comes until it is enough, or the writing end is closed. False when neither happens in time.
    [[nodiscard]] bool read(std::string& text, const std::function<bool()>& isEnough) const {
        for (;;) {
            if (isEnough()) {
                return true;
            }
            pollfd waited{reading(), POLLIN, 0};
            if (::poll(&waited, 1, mostMilliseconds) != 1) {
                return false;
            }
            char buffer[4096];
            const ssize_t count = ::read(reading(), buffer, sizeof buffer);
            if (count <= 0) {
                return true;
            }
            text.append(buffer, static_cast<std::size_t>(count));
        }
    }

private:
    static void close(int& end) {
        if (end >= 0) {
            ::close(std::exchange(end, -1));
        }
    }
    int ends_[2] = {-1, -1};
};

// A program that was started; ended by its number if it has not ended before.
class Program {
public:
    struct Redirection {
        int from;
        int to;
    };
    Program(std::vector<std::string> words, const std::vector<Redirection>& redirections) {
        std::vector<char*> arguments;
        for (auto& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        for (const auto& redirection : redirections) {
            ::posix_spawn_file_actions_adddup2(&actions, redirection.from, redirection.to);
        }
        problem = ::posix_spawnp(&number_, arguments[0], &actions, nullptr, arguments.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        end();
        (void)status();
    }
    [[nodiscard]] pid_t number() const { return number_; }
    void end() const {
        if (problem == 0 && !hasEnded_) {
            ::kill(number_, SIGKILL);
        }
    }
    // Waits for its end.
    int status() {
        if (problem == 0 && !hasEnded_) {
            hasEnded_ = ::waitpid(number_, &status_, 0) == number_;
        }
        return status_;
    }

    int problem = 0;  ///< why it could not be started

private:
    pid_t number_ = 0;
    int status_ = 0;
    bool hasEnded_ = false;
};

std::optional<files::RemovalOutcome> outcomeOf(const std::string& answer) {
    if (answer == "gone") {
        return files::RemovalOutcome{RemovalEnd::gone, std::nullopt};
    }
    int code = 0;
    int length = 0;
    if (std::sscanf(answer.c_str(), "kept %d %n", &code, &length) == 1 && length > 0) {
        return files::RemovalOutcome{RemovalEnd::kept, files::Failure{code, answer.substr(std::size_t(length))}};
    }
    return std::nullopt;  // without a stop, nothing is cancelled
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

TracedRemoval TracedRemoval::run(const std::filesystem::path& item, const std::vector<std::string>& options) {
    TracedRemoval result;
    const TemporaryFolder folder(folderInMemory());  // for the trace
    Pipe input;
    Pipe output;
    Pipe notices;
    Program removal({BRIMVAULT_REMOVAL_PROGRAM, item.native()},
                    {{input.reading(), STDIN_FILENO}, {output.writing(), STDOUT_FILENO}});
    input.closeReading();
    output.closeWriting();
    std::string said;
    if (!output.read(said, [&] { return said == ready; }) || said != ready) {
        result.trouble = "did not start";
        return result;
    }

    std::vector<std::string> words = {"strace", "-f", "-p", std::to_string(removal.number()), "-o", folder / "trace"};
    words.insert(words.end(), options.begin(), options.end());
    Program strace(words, {{notices.writing(), STDERR_FILENO}});
    notices.closeWriting();
    std::string noticed;
    const auto isAttached = [&] { return noticed.find(" attached") != std::string::npos; };
    if (strace.problem != 0 || !notices.read(noticed, isAttached) || !isAttached()) {
        result.untried = strace.problem == 0 ? noticed : "no strace";
        return result;
    }

    said.clear();
    input.closeWriting();
    const bool inTime = output.read(said, [] { return false; });
    if (!inTime) {
        removal.end();
    }
    const int status = removal.status();
    (void)strace.status();
    result.trace = contentsOf(folder / "trace");
    result.outcome = outcomeOf(said);
    if (!inTime || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        result.trouble = inTime ? "ended with status " + std::to_string(status) : notEnded;
    } else if (!result.outcome) {
        result.trouble = "said \"" + said + "\"";
    }
    return result;
}

}  // namespace brimvault::tests
