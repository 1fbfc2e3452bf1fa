#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stop_token>
#include <utility>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/operations/SBaseOperation.h"

namespace brimvault::tests {

/// A scan operation whose work a test supplies; it ends with its section's finished notification, as every one does.
class SuppliedScan final : public engine::SBaseOperation {
public:
    using Work = std::function<engine::ItemArray(SuppliedScan&)>;
    SuppliedScan(engine::Section section, Work work) : SBaseOperation(section), work_(std::move(work)) {}
    using SBaseOperation::stopToken;

protected:
    void main() override {
        const auto words = engine::vocabulary(section());
        engine::NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, work_(*this)}});
    }

private:
    Work work_;
};

/// An operation whose work a test supplies, and what it does when it is given up.
class SuppliedWork final : public engine::SectionOperation {
public:
    using Work = std::function<void(SuppliedWork&)>;
    explicit SuppliedWork(Work work, engine::Section section = engine::Section::caches, Work givenUp = {})
        : SectionOperation(section), work_(std::move(work)), givenUp_(std::move(givenUp)) {}

    using SectionOperation::stopToken;

protected:
    void main() override { work_(*this); }
    void givenUp() override {
        if (givenUp_) {
            givenUp_(*this);
        }
    }

private:
    Work work_;
    Work givenUp_;
};

/// Holds back whoever waits, as a volume that does not answer, until it is let on: at its own end at the latest, when
/// it waits for all to have gone. Work shares it, since it may be left behind.
class Hang {
public:
    ~Hang() {
        letOn();
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return waiting_ == 0; });
    }
    void wait(std::chrono::milliseconds max = std::chrono::hours(1)) {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.wait_for(lock, max, [this] { return isOpen_; });
        --waiting_;
        changed_.notify_all();
    }
    void letOn() {
        const std::lock_guard lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }
    [[nodiscard]] bool holdsAny() const {
        const std::lock_guard lock(mutex_);
        return waiting_ > 0;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = false;
    int waiting_ = 0;
};

/// Comes back when the operation has been cancelled.
template <typename Supplied>
void awaitCancel(const Supplied& operation) {
    std::promise<void> cancelled;
    const std::stop_callback onCancel(operation.stopToken(), [&] { cancelled.set_value(); });
    cancelled.get_future().wait();
}

}  // namespace brimvault::tests
