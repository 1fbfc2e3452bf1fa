#include "files/trees/MeasuredFolder.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "files/trees/Measure.h"
#include "files/walk/AheadOf.h"

namespace brimvault::files {

namespace {

// A listing has no order. From this many entries on they are taken in the order of their inodes, which on most file
// systems is the order on the disk: what a cold disk is asked for lies together.
constexpr std::size_t sortedEntries = 1000;
constexpr std::size_t maxHeld = 16'384;  // entries listed before their turn
constexpr std::size_t maxAhead = 1024;   // and perhaps measured

// What one thread measures at a time: a folder, or some files, as one alone costs less than handing it over.
struct Portion {
    std::size_t first;
    std::size_t count;
    bool isFolder;

    [[nodiscard]] std::size_t end() const { return first + count; }
    [[nodiscard]] bool takesFile(std::size_t number) const {
        constexpr std::size_t maxFiles = 32;
        return !isFolder && number == end() && count < maxFiles;
    }
};

// Some of the entries of one folder, as they were listed.
class Listing {
public:
    using Call = std::function<bool(const MeasurableEntry&)>;
    using SizesOf = std::function<Sizes(const char* name)>;

    Listing(const DirectoryHandle& folder, std::uint64_t mount, const OpenFiles* open, const std::stop_token& stop)
        : folder_(folder),
          mount_(mount),
          inspection_(open == nullptr ? std::nullopt : std::optional(InspectionContext{mount, *open})),
          stop_(stop) {}

    void add(const DirectoryEntry& entry) {
        listed_.push_back({entry.inode, static_cast<std::uint32_t>(names_.size()), entry.kind, Sizes::unwanted});
        names_.append(entry.name).push_back('\0');
    }
    [[nodiscard]] bool isFull() const { return listed_.size() >= maxHeld; }

    // Whether all were reported; empties the listing, once no helper measures any of them.
    bool report(const SizesOf& sizes, const Call& call) {
        if (listed_.size() >= sortedEntries) {
            std::sort(listed_.begin(), listed_.end(),
                      [](const Listed& left, const Listed& right) { return left.inode < right.inode; });
        }
        bool goesOn = true;
        for (std::size_t first = 0; goesOn && first < listed_.size(); first += maxAhead) {
            goesOn = reportSome(first, std::min(first + maxAhead, listed_.size()), sizes, call);
        }
        listed_.clear();
        names_.clear();
        return goesOn;
    }

private:
    struct Listed {
        std::uint64_t inode;
        std::uint32_t name;  // where it begins
        NodeKind kind;
        Sizes sizes;
    };

    bool reportSome(std::size_t first, std::size_t end, const SizesOf& sizes, const Call& call) {
        for (std::size_t number = first; number < end; ++number) {
            listed_[number].sizes = sizes(nameOf(number));
        }
        const auto portions = portionsOf(first, end);
        AheadOf<std::vector<ItemFindings>> ahead(portions.size(), stop_,
                                                 [&](std::size_t place) { return measure(portions[place]); });
        std::size_t place = 0;
        std::vector<ItemFindings> measured;  // of the portion at that place
        for (std::size_t number = first; number < end; ++number) {
            if (place < portions.size() && number == portions[place].end()) {
                ++place;
                measured.clear();
            }
            const std::function<ItemFindings()> findings = [&] {
                if (listed_[number].sizes == Sizes::unwanted) {
                    return measure(number);
                }
                if (measured.empty()) {
                    measured = ahead.take(place);
                }
                return std::move(measured[number - portions[place].first]);
            };
            const auto& entry = listed_[number];
            if (stop_.stop_requested() || !call({nameOf(number), entry.kind, entry.sizes, findings})) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::vector<Portion> portionsOf(std::size_t first, std::size_t end) const {
        std::vector<Portion> all;
        for (std::size_t number = first; number < end; ++number) {
            const bool isFolder = listed_[number].kind == NodeKind::directory;
            if (listed_[number].sizes == Sizes::unwanted) {
                continue;
            }
            if (!isFolder && !all.empty() && all.back().takesFile(number)) {
                ++all.back().count;
            } else {
                all.push_back({number, 1, isFolder});
            }
        }
        return all;
    }

    [[nodiscard]] std::vector<ItemFindings> measure(const Portion& portion) const {
        std::vector<ItemFindings> found;
        for (std::size_t number = portion.first; number < portion.end(); ++number) {
            found.push_back(measure(number));
        }
        return found;
    }
    [[nodiscard]] ItemFindings measure(std::size_t number) const {
        const DirectoryEntry entry{nameOf(number), listed_[number].kind};
        if (inspection_) {
            return inspectEntry(folder_, entry, *inspection_, stop_);
        }
        auto [logical, space] = measureEntry(folder_, entry, mount_, stop_);
        return {.logical = logical, .space = std::move(space)};
    }
    [[nodiscard]] const char* nameOf(std::size_t number) const { return names_.c_str() + listed_[number].name; }

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
    Listing listing(folder, status->mount, open, stop);
    bool goesOn = true;
    std::size_t listed = 0;
    const int code = folder.forEachEntry([&](const DirectoryEntry& entry) {
        constexpr std::size_t entriesBetweenStops = 64;
        if (++listed % entriesBetweenStops == 0 && stop.stop_requested()) {
            goesOn = false;
            return false;
        }
        if (hidden == HiddenEntries::include || entry.name[0] != '.') {
            listing.add(entry);
        }
        goesOn = !listing.isFull() || listing.report(sizes, call);
        return goesOn;
    });
    if (goesOn) {
        (void)listing.report(sizes, call);
    }
    return code;
}

}  // namespace brimvault::files
