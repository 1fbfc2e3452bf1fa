#include "engine/removal/FreedSpaceMeter.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <system_error>
#include <thread>
#include <utility>

#include "files/removal/Remove.h"
#include "platform/text/DisplayText.h"

namespace brimvault::engine {

namespace {

using Device = std::uint64_t;
using FileKey = std::pair<Device, std::uint64_t>;  // with the inode

constexpr std::chrono::milliseconds readingTimeout{2000};  // a disk may have to start turning
constexpr std::chrono::milliseconds flushTimeout{3000};

template <typename Answer>
using Questions = std::map<Device, std::function<std::optional<Answer>()>>;

/// Shared by the caller and the threads that ask, which may outlive the call.
template <typename Answer>
struct Answers {
    std::mutex mutex;
    std::condition_variable_any arrived;
    std::map<Device, Answer> answers;
    std::size_t count = 0;  ///< with those that know nothing
};

// Asks all side by side, and returns the answers that come in time.
template <typename Answer>
std::map<Device, Answer> answersInTime(const Questions<Answer>& questions, std::chrono::milliseconds timeout,
                                       const std::stop_token& stop) {
    const auto all = std::make_shared<Answers<Answer>>();
    std::size_t asked = 0;
    for (const auto& [device, question] : questions) {
        try {
            std::thread([all, device = device, question = question] {
                auto answer = question();
                const std::lock_guard lock(all->mutex);
                if (answer) {
                    all->answers.emplace(device, std::move(*answer));
                }
                ++all->count;
                all->arrived.notify_all();
            }).detach();
            ++asked;
        } catch (const std::system_error&) {  // no thread is to be had: this volume is left out
        }
    }
    std::unique_lock lock(all->mutex);
    all->arrived.wait_for(lock, stop, timeout, [&] { return all->count == asked; });
    return all->answers;
}

template <typename Answer>
std::set<Device> devicesOf(const std::map<Device, Answer>& answers) {
    std::set<Device> devices;
    for (const auto& [device, answer] : answers) {
        devices.insert(device);
    }
    return devices;
}

// What lies in something else of the list, which counts it already.
std::set<std::string> nestedPaths(const std::vector<SelectedShare>& selected) {
    std::vector<std::string> folders;
    folders.reserve(selected.size());
    for (const auto& share : selected) {
        if (!share.path.empty() && !share.standsForSeveral) {
            folders.push_back(share.path + '/');
        }
    }
    std::sort(folders.begin(), folders.end());
    std::set<std::string> nested;
    const std::string* outer = nullptr;
    for (const auto& folder : folders) {
        if (outer != nullptr && folder.size() > outer->size() && folder.starts_with(*outer)) {
            nested.insert(folder.substr(0, folder.size() - 1));
        } else {
            outer = &folder;
        }
    }
    return nested;
}

}  // namespace

void FreedSpaceMeter::begin(std::vector<SelectedShare> selected, const std::vector<SelectedSet>& sets,
                            const std::stop_token& stop) {
    using Reading = std::pair<std::shared_ptr<HeldVolume>, quint64>;
    const auto nested = nestedPaths(selected);
    std::map<Device, Share> shares;
    std::map<std::string, quint64> expected;
    Questions<Reading> questions;
    for (auto& share : selected) {
        const bool isInAnother = !share.standsForSeveral && nested.contains(share.path);
        const quint64 counted = isInAnother ? 0 : share.bytes;
        shares[share.device].selected += counted;
        if (!share.path.empty()) {
            expected[share.path] = counted;
        }
        questions.try_emplace(
            share.device,
            [&volumes = volumes_, folder = std::move(share.folder), device = share.device]() -> std::optional<Reading> {
                auto volume = volumes.hold(folder, device);
                const auto bytes = volume == nullptr ? std::nullopt : volume->freeBytes();
                return bytes ? std::optional(Reading(std::move(volume), *bytes)) : std::nullopt;
            });
    }
    for (const auto& set : sets) {
        shares[set.device].selected += set.bytes;
    }
    const auto readings = answersInTime(questions, readingTimeout, stop);
    std::erase_if(shares, [&](const auto& share) { return !readings.contains(share.first); });
    for (const auto& [device, reading] : readings) {
        std::tie(shares[device].volume, shares[device].freeBefore) = reading;
    }
    std::set<FileKey> inUse;
    for (const auto& file : volumes_.removedFilesInUse(devicesOf(readings), stop)) {
        inUse.emplace(file.device, file.inode);
    }
    const std::lock_guard lock(mutex_);
    shares_ = std::move(shares);
    for (const auto& set : sets) {
        for (const auto& path : set.paths) {
            setsOf_[path].push_back(sets_.size());
        }
        sets_.push_back({set.device, set.bytes, set.paths.size()});
    }
    expected_ = std::move(expected);
    entriesBefore_ = files::entriesRemoved();
    inUseBefore_ = std::move(inUse);
}

void FreedSpaceMeter::add(const ItemOutcome& outcome) {
    const std::lock_guard lock(mutex_);
    emptied_ += outcome.emptied;
    if (!outcome.gone) {
        return;
    }
    const auto path = outcome.paths.empty() ? std::string() : outcome.paths.front().native();
    hasAnyGone_ = true;
    if (outcome.device) {
        // An item may free more by now, as others have gone with which it shared files: these are sets.
        const auto known = expected_.find(path);
        noteRemoved(*outcome.device, known == expected_.end() ? outcome.bytes : known->second);
    }
    for (const auto number : std::exchange(setsOf_[path], {})) {
        if (--sets_[number].left == 0) {
            noteRemoved(sets_[number].device, sets_[number].bytes);
        }
    }
}

void FreedSpaceMeter::noteRemoved(Device device, quint64 bytes) {
    if (const auto share = shares_.find(device); share != shares_.end()) {
        share->second.removed += bytes;
    }
}

std::optional<FreedSpace> FreedSpaceMeter::end(const std::stop_token& stop) {
    Questions<bool> flushes;
    Questions<quint64> readings;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& [device, share] : shares_) {
            flushes[device] = [volume = share.volume] {
                volume->flush();
                return std::optional(true);
            };
            readings[device] = [volume = share.volume] { return volume->freeBytes(); };
        }
    }
    (void)answersInTime(flushes, flushTimeout, stop);
    const auto freeNow = answersInTime(readings, readingTimeout, stop);
    auto space = compared(freeNow);
    if (freeNow.empty() || !hasRemovedAny() || stop.stop_requested()) {
        return std::nullopt;
    }
    if (space.isDifferenceWorthTelling()) {
        space.programs = programsHolding(space.held(), devicesOf(freeNow), stop);
    }
    return stop.stop_requested() ? std::nullopt : std::optional(std::move(space));
}

// An item of which a part stays has not gone, and yet freed something.
bool FreedSpaceMeter::hasRemovedAny() const {
    const std::lock_guard lock(mutex_);
    return hasAnyGone_ || files::entriesRemoved() != entriesBefore_;
}

// Other programs write and remove meanwhile: no volume has freed less than nothing, or more than was selected on it.
FreedSpace FreedSpaceMeter::compared(const std::map<Device, quint64>& freeNow) const {
    FreedSpace space;
    const std::lock_guard lock(mutex_);
    space.emptied = emptied_;
    for (const auto& [device, now] : freeNow) {
        const auto& share = shares_.at(device);
        space.selected += share.selected;
        space.removed += std::min(share.removed, share.selected);
        space.freed += std::min(now - std::min(now, share.freeBefore), share.selected);
    }
    return space;
}

QStringList FreedSpaceMeter::programsHolding(quint64 bytes, const std::set<Device>& devices,
                                             const std::stop_token& stop) const {
    constexpr quint64 notablePart = 10;  // others remove files that they have open, too
    std::map<std::string, quint64> bytesOf;
    for (const auto& file : volumes_.removedFilesInUse(devices, stop)) {
        const std::lock_guard lock(mutex_);
        if (!inUseBefore_.contains({file.device, file.inode})) {
            bytesOf[file.program] += file.allocated;
        }
    }
    std::vector<std::pair<quint64, std::string>> holders;
    for (const auto& [program, held] : bytesOf) {
        if (held >= bytes / notablePart && !program.empty()) {
            holders.emplace_back(held, program);
        }
    }
    std::sort(holders.rbegin(), holders.rend());
    QStringList programs;
    for (const auto& [held, program] : holders) {
        programs.append(platform::displayText(program));
    }
    return programs;
}

}  // namespace brimvault::engine
