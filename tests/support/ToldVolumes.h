#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <set>

#include "engine/removal/Volumes.h"
#include "support/SectionWork.h"

namespace brimvault::tests {

/// Volumes that say what they were told to; a silent one answers nothing until the end. Any thread.
class ToldVolumes final : public engine::Volumes {
public:
    std::shared_ptr<engine::HeldVolume> hold(const std::filesystem::path& /*folder*/, std::uint64_t device) override {
        ++held;
        if (device == silent) {
            hang_.wait();
            return nullptr;
        }
        return std::make_shared<Held>(*this, device);
    }
    std::vector<files::RemovedFile> removedFilesInUse(const std::set<std::uint64_t>& devices,
                                                      const std::stop_token& /*stop*/) override {
        asked.push_back(devices);
        return asked.size() == 1 ? inUseBefore : inUseAfter;
    }

    void setFree(std::uint64_t device, quint64 bytes) {
        const std::lock_guard lock(mutex_);
        free_[device] = bytes;
    }
    /// What a volume has put off until it is flushed.
    void setFreeWhenFlushed(std::uint64_t device, quint64 bytes) {
        const std::lock_guard lock(mutex_);
        flushed_[device] = bytes;
    }

    std::uint64_t silent = 0;
    std::vector<files::RemovedFile> inUseBefore;  ///< at the first question
    std::vector<files::RemovedFile> inUseAfter;
    std::vector<std::set<std::uint64_t>> asked;
    std::atomic<int> held = 0;

private:
    class Held final : public engine::HeldVolume {
    public:
        Held(ToldVolumes& volumes, std::uint64_t device) : volumes_(volumes), device_(device) {}
        std::optional<quint64> freeBytes() override {
            const std::lock_guard lock(volumes_.mutex_);
            return volumes_.free_[device_];
        }
        void flush() override {
            const std::lock_guard lock(volumes_.mutex_);
            volumes_.free_[device_] += std::exchange(volumes_.flushed_[device_], 0);
        }

    private:
        ToldVolumes& volumes_;
        const std::uint64_t device_;
    };

    std::mutex mutex_;
    std::map<std::uint64_t, quint64> free_;
    std::map<std::uint64_t, quint64> flushed_;
    Hang hang_;
};

}  // namespace brimvault::tests
