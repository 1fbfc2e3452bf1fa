#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
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

/// Answers that one thread takes in order, and that whoever of the pool has time works out ahead of it. One that is
/// waited for while another thread is at it leaves time for those after it.
///
/// `answer` is called once for each number below `count`, by several threads at once; where it throws, it
/// is called again by the thread that takes the answer. After a stop no helper begins another.
template <typename Answer>
class AheadOf final : public SharedWork {
public:
    AheadOf(std::size_t count, std::stop_token stop, std::function<Answer(std::size_t)> answer)
        : stop_(std::move(stop)), answer_(std::move(answer)), answers_(count) {
        if (count >= fewestWorthHelp) {
            WorkPool::shared().offer(*this);
        }
    }
    AheadOf(const AheadOf&) = delete;
    AheadOf& operator=(const AheadOf&) = delete;
    ~AheadOf() override {
        next_.store(answers_.size(), std::memory_order_relaxed);  // what was not taken is not wanted
        WorkPool::shared().withdraw(*this);
    }

    /// The numbers are given in order, each once. One thread.
    Answer take(std::size_t number) {
        for (;;) {
            if (auto known = takeKnown(number)) {
                return known->answer ? std::move(*known->answer) : answer_(number);
            }
            if (!workOutNext() && !WorkPool::shared().helpFellowsOf(*this)) {
                std::unique_lock lock(mutex_);
                changed_.wait_for(lock, untilAskedAgain, [&] { return answers_[number].has_value(); });
            }
        }
    }

    bool help() noexcept override {
        bool hasHelped = false;
        while (!stop_.stop_requested() && workOutNext()) {
            hasHelped = true;
        }
        return hasHelped;
    }
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    static constexpr std::size_t fewestWorthHelp = 4;
    static constexpr std::chrono::milliseconds untilAskedAgain{1};

    struct Known {
        std::optional<Answer> answer;  ///< none where it was not to be had
    };

    std::optional<Known> takeKnown(std::size_t number) {
        const std::lock_guard lock(mutex_);
        return std::exchange(answers_[number], std::nullopt);
    }

    bool workOutNext() {
        const std::size_t number = next_.fetch_add(1, std::memory_order_relaxed);
        if (number >= answers_.size()) {
            return false;
        }
        Known known;
        try {
            known.answer = answer_(number);
        } catch (const std::exception&) {
            known.answer.reset();
        }
        const std::lock_guard lock(mutex_);
        answers_[number] = std::move(known);
        changed_.notify_all();
        return true;
    }

    const std::stop_token stop_;
    const std::function<Answer(std::size_t)> answer_;
    std::atomic<std::size_t> next_ = 0;

    std::mutex mutex_;  ///< protects what follows
    std::condition_variable changed_;
    std::vector<std::optional<Known>> answers_;
};

}  // namespace brimvault::files
