#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "files/walk/WorkPool.h"

namespace brimvault::files {

/// An ordered parallel map: one thread, the owner, consumes the results in order while pool threads compute ahead of
/// it. Where the owner needs a result that another thread is computing, it computes later ones meanwhile.
///
/// `compute` is called once for each number below `count`, by several threads at once; where it throws, the owner calls
/// it again in `take`. After a stop no helper begins another.
template <typename Value>
class AheadOf final : public SharedWork {
public:
    AheadOf(std::size_t count, std::stop_token stop, std::function<Value(std::size_t)> compute)
        : stop_(std::move(stop)), compute_(std::move(compute)), results_(count) {
        if (count >= minShared) {
            WorkPool::shared().offer(*this);
        }
    }
    AheadOf(const AheadOf&) = delete;
    AheadOf& operator=(const AheadOf&) = delete;
    ~AheadOf() override {
        next_.store(results_.size(), std::memory_order_relaxed);  // results that were not taken are not wanted
        WorkPool::shared().withdraw(*this);
    }

    /// The numbers are given in order, each once. The owner.
    Value take(std::size_t number) {
        for (;;) {
            if (auto result = takeIfKnown(number)) {
                return result->value ? std::move(*result->value) : compute_(number);
            }
            if (!computeNext()) {
                WorkPool::shared().helpUntil(*this, [&] { return isKnownElseAwaited(number); });
            }
        }
    }

    [[nodiscard]] bool hasWork() const noexcept override {
        return next_.load(std::memory_order_relaxed) < results_.size() && !stop_.stop_requested();
    }
    void help() noexcept override {
        while (!stop_.stop_requested() && computeNext()) {
        }
    }
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    static constexpr std::size_t minShared = 4;

    struct Result {
        std::optional<Value> value;  ///< none where `compute` threw
    };

    std::optional<Result> takeIfKnown(std::size_t number) {
        const std::lock_guard lock(mutex_);
        return std::exchange(results_[number], std::nullopt);
    }
    bool isKnownElseAwaited(std::size_t number) {
        const std::lock_guard lock(mutex_);
        awaited_ = number;
        return results_[number].has_value();
    }

    bool computeNext() {
        const std::size_t number = next_.fetch_add(1, std::memory_order_relaxed);
        if (number >= results_.size()) {
            return false;
        }
        Result result;
        try {
            result.value = compute_(number);
        } catch (const std::exception&) {
            result.value.reset();
        }
        if (keep(number, std::move(result))) {
            WorkPool::shared().wakeOwner(*this);
        }
        return true;
    }

    /// True when the owner waits for it.
    bool keep(std::size_t number, Result result) {
        const std::lock_guard lock(mutex_);
        results_[number] = std::move(result);
        return number == awaited_;
    }

    const std::stop_token stop_;
    const std::function<Value(std::size_t)> compute_;
    std::atomic<std::size_t> next_ = 0;

    std::mutex mutex_;                    ///< protects what follows
    std::optional<std::size_t> awaited_;  ///< the number that the owner waits for, or waited for last
    std::vector<std::optional<Result>> results_;
};

}  // namespace brimvault::files
