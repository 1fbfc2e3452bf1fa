#include "files/trees/MeasuredFolder.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "files/trees/Measure.h"
#include "files/walk/AheadOf.h"

namespace brimvault::files {

namespace {

constexpr std::size_t maxAhead = 1024;  // entries listed, and perhaps measured, before their turn

// A batch of listed entries. Folders are measured ahead; for a file that would cost more than its size does.
class Batch {
public:
    Batch(const DirectoryHandle& folder, std::uint64_t mount, const OpenFiles* open, const std::stop_token& stop)
        : folder_(folder),
          mount_(mount),
          inspection_(open == nullptr ? std::nullopt : std::optional(InspectionContext{mount, *open})),
          stop_(stop) {}

    void add(const DirectoryEntry& entry, Sizes sizes) {
        listed_.push_back({names_.size(), entry.kind, sizes});
        names_.append(entry.name).push_back('\0');
    }
    [[nodiscard]] bool isFull() const { return listed_.size() >= maxAhead; }

    // Whether all were reported; empties the batch, once no helper measures it any more.
    bool report(const std::function<bool(const MeasurableEntry&)>& call) {
        const bool goesOn = reportEach(call);
        listed_.clear();
        names_.clear();
        return goesOn;
    }

private:
    struct Listed {
        std::size_t name;  ///< where it begins
        NodeKind kind;
        Sizes sizes;
    };

    bool reportEach(const std::function<bool(const MeasurableEntry&)>& call) const {
        std::vector<std::size_t> folders;
        for (std::size_t number = 0; number < listed_.size(); ++number) {
            if (isMeasuredAhead(number)) {
                folders.push_back(number);
            }
        }
        AheadOf<ItemFindings> ahead(folders.size(), stop_, [&](std::size_t place) { return measure(folders[place]); });
        std::size_t nextFolder = 0;
        for (std::size_t number = 0; number < listed_.size(); ++number) {
            const bool isAhead = isMeasuredAhead(number);
            const std::size_t place = isAhead ? nextFolder++ : 0;
            const std::function<ItemFindings()> findings = [&] {
                return isAhead ? ahead.take(place) : measure(number);
            };
            const auto& [name, kind, sizes] = listed_[number];
            if (stop_.stop_requested() || !call({nameOf(number), kind, sizes, findings})) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool isMeasuredAhead(std::size_t number) const {
        return listed_[number].kind == NodeKind::directory && listed_[number].sizes == Sizes::wanted;
    }
    [[nodiscard]] const char* nameOf(std::size_t number) const { return names_.c_str() + listed_[number].name; }
    [[nodiscard]] ItemFindings measure(std::size_t number) const {
        const DirectoryEntry entry{nameOf(number), listed_[number].kind};
        return inspection_ ? inspectEntry(folder_, entry, *inspection_, stop_)
                           : ItemFindings{.logical = measureEntry(folder_, entry, mount_, stop_)};
    }

    const DirectoryHandle& folder_;
    const std::uint64_t mount_;
    const std::optional<InspectionContext> inspection_;
    const std::stop_token& stop_;
    std::string names_;
    std::vector<Listed> listed_;
};

}  // namespace

int forEachMeasurable(const std::filesystem::path& folder, HiddenEntries hidden, const std::stop_token& stop,
                      const std::function<Sizes(const char* name)>& sizes,
                      const std::function<bool(const MeasurableEntry&)>& call) {
    const auto opened = DirectoryHandle::openForReading(folder);
    return opened ? forEachMeasurable(*opened, hidden, stop, sizes, call) : opened.code();
}

int forEachMeasurable(const DirectoryHandle& folder, HiddenEntries hidden, const std::stop_token& stop,
                      const std::function<Sizes(const char* name)>& sizes,
                      const std::function<bool(const MeasurableEntry&)>& call, const OpenFiles* open) {
    const auto status = folder.status();
    if (!status) {
        return status.code();
    }
    Batch batch(folder, status->mount, open, stop);
    bool goesOn = true;
    std::size_t listed = 0;
    const int code = folder.forEachEntry([&](const DirectoryEntry& entry) {
        constexpr std::size_t entriesBetweenStops = 64;
        if (++listed % entriesBetweenStops == 0 && stop.stop_requested()) {
            goesOn = false;
            return false;
        }
        if (hidden == HiddenEntries::include || entry.name[0] != '.') {
            batch.add(entry, sizes(entry.name));
        }
        goesOn = !batch.isFull() || batch.report(call);
        return goesOn;
    });
    if (goesOn) {
        (void)batch.report(call);
    }
    return code;
}

}  // namespace brimvault::files
