#pragma once

#include <sys/types.h>

#include <optional>
#include <utility>

namespace brimvault::cleaner {

/// The process that has started the tool, held so that no other can take its place: a number is given to another
/// process once its own has ended, what is held here is not.
class ApplicationProcess {
public:
    /// None where the number is not that of the process that has started this one, or that has ended by now.
    static std::optional<ApplicationProcess> ofParent(pid_t number);

    ApplicationProcess(ApplicationProcess&& other) noexcept
        : number_(other.number_), descriptor_(std::exchange(other.descriptor_, -1)) {}
    ApplicationProcess& operator=(ApplicationProcess&&) = delete;
    ~ApplicationProcess();

    /// While the process has not ended it is the only one of this number.
    [[nodiscard]] pid_t number() const { return number_; }
    /// To be waited for: becomes readable when the process ends.
    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] bool hasEnded() const;
    /// From now on this process ends within a second of the application, whatever it is doing or waiting for; it may
    /// end in order before. Once, after privileges have been given up: threads have their own.
    void endWithIt() const;

private:
    ApplicationProcess(pid_t number, int descriptor) : number_(number), descriptor_(descriptor) {}

    pid_t number_;
    int descriptor_;
};

}  // namespace brimvault::cleaner
