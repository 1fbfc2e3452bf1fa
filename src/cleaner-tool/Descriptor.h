#pragma once

#include <unistd.h>

#include <utility>

namespace brimvault::cleaner {

/// A file descriptor with one owner; below 0 there is none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (isOpen()) {
            ::close(number_);
        }
    }

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool isOpen() const { return number_ >= 0; }

private:
    int number_ = -1;
};

}  // namespace brimvault::cleaner
