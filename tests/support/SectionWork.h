#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
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

protected:
    void main() override {
        const auto words = engine::vocabulary(section());
        engine::NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, work_(*this)}});
    }

private:
    Work work_;
};

/// An operation whose work a test supplies.
class SuppliedWork final : public engine::SectionOperation {
public:
    using Work = std::function<void(SuppliedWork&)>;
    explicit SuppliedWork(Work work, engine::Section section = engine::Section::caches)
        : SectionOperation(section), work_(std::move(work)) {}

protected:
    void main() override { work_(*this); }

private:
    Work work_;
};

/// Holds back whoever waits, as a volume that does not answer, until it is let on: at its own end at the latest, when
/// it waits for all to have gone. Work shares it, since it may be left behind.
class Hang {
public:
    ~Hang() {
        letOn();
        while (waiting_ > 0) {
            std::this_thread::yield();
        }
    }
    void wait() {
        ++waiting_;
        open_.wait(false);
        --waiting_;
    }
    void letOn() {
        open_ = true;
        open_.notify_all();
    }
    [[nodiscard]] bool holdsAny() const { return waiting_ > 0; }

private:
    std::atomic<bool> open_ = false;
    std::atomic<int> waiting_ = 0;
};

/// Comes back when the operation has been cancelled.
inline void awaitCancel(const engine::Operation& operation) {
    while (!operation.isCancelled()) {
        std::this_thread::yield();
    }
}

}  // namespace brimvault::tests
