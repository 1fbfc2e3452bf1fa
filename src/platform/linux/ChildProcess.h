#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "files/FileDescriptor.h"

namespace brimvault::platform {

/// How a program is started. It inherits no descriptor but the standard streams.
struct ProgramStart {
    enum class Leads { nothing, processGroup, session };
    enum class Streams { inherited, null };

    std::vector<std::string> words;        ///< the program's path, then its arguments
    std::vector<std::string> environment;  ///< "NAME=value"
    Leads leads = Leads::nothing;
    Streams streams = Streams::null;
    int output = -1;  ///< the standard output, if not below 0
};

/// A program that this process has started. It goes on when the object is destroyed. One thread at a time.
class ChildProcess {
public:
    /// None where the program could not be started.
    [[nodiscard]] static std::optional<ChildProcess> start(const ProgramStart& program);

    [[nodiscard]] pid_t id() const { return id_; }
    /// A pidfd, for poll(2): becomes readable when the program ends.
    [[nodiscard]] int descriptor() const { return descriptor_.number(); }
    /// Does not wait. Reaps the process once it has ended, so that it does not stay as a zombie.
    [[nodiscard]] bool hasEnded();
    /// It has ended, by itself and with exit code 0.
    [[nodiscard]] bool hasSucceeded() { return hasEnded() && succeeded_; }

    /// Reaps the process whenever it ends, on a thread that waits for that.
    static void reapInBackground(const ChildProcess& process);

private:
    ChildProcess(pid_t id, files::FileDescriptor descriptor) : id_(id), descriptor_(std::move(descriptor)) {}

    pid_t id_;
    files::FileDescriptor descriptor_;
    bool ended_ = false;
    bool succeeded_ = false;
};

/// The environment of this process.
[[nodiscard]] std::vector<std::string> currentEnvironment();

}  // namespace brimvault::platform
