#pragma once

#include <sys/types.h>

#include <optional>
#include <utility>

#include "files/FileDescriptor.h"

namespace brimvault::cleaner {

/// The process that has started the tool, held by a pidfd: the kernel may give a process ID to another process once the
/// first has ended, whereas a pidfd always refers to the same one.
class ApplicationProcess {
public:
    /// None where the process ID is not that of the parent of this process, or the parent has ended by now.
    static std::optional<ApplicationProcess> ofParent(pid_t id);

    /// Unique as long as the process has not ended.
    [[nodiscard]] pid_t id() const { return id_; }
    /// The pidfd, for poll(2): becomes readable when the process ends.
    [[nodiscard]] int descriptor() const { return descriptor_.number(); }
    [[nodiscard]] bool hasEnded() const;
    /// Starts a thread that ends this process half a second after the application has ended, whatever other threads do
    /// or wait for; until then `main` may still return. Call it once, after privileges have been dropped: each thread
    /// has its own.
    void exitAfterItEnds() const;

private:
    ApplicationProcess(pid_t id, files::FileDescriptor descriptor) : id_(id), descriptor_(std::move(descriptor)) {}

    pid_t id_;
    files::FileDescriptor descriptor_;
};

}  // namespace brimvault::cleaner
