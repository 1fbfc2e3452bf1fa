#include "engine/removal/Volumes.h"

#include "files/Volume.h"

namespace brimvault::engine {

namespace {

class SystemVolume final : public HeldVolume {
public:
    explicit SystemVolume(files::Volume volume) : volume_(std::move(volume)) {}
    std::optional<quint64> freeBytes() override { return volume_.freeBytes(); }
    void flush() override { volume_.flush(); }

private:
    const files::Volume volume_;
};

class SystemVolumes final : public Volumes {
public:
    std::shared_ptr<HeldVolume> hold(const std::filesystem::path& folder, std::uint64_t device) override {
        auto volume = files::Volume::of(folder);
        return volume && volume->device() == device ? std::make_shared<SystemVolume>(std::move(*volume)) : nullptr;
    }

    std::vector<files::RemovedFile> removedFilesInUse(const std::set<std::uint64_t>& devices,
                                                      const std::stop_token& stop) override {
        return files::removedFilesInUse(devices, stop);
    }
};

}  // namespace

Volumes& Volumes::ofSystem() {
    static auto* const volumes = new SystemVolumes;
    return *volumes;
}

}  // namespace brimvault::engine
