#include <QByteArray>
#include <chrono>
#include <stop_token>
#include <string>

#include "platform/FileBrowser.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/DefaultProgram.h"

// File browsers answer to one interface on the session bus, org.freedesktop.FileManager1. The bus starts a file browser
// where none is running.

namespace brimvault::platform {

namespace {

constexpr std::chrono::seconds replyTimeout{15};  // a file browser that starts from a cold disk takes some seconds

// The bytes of the path, escaped: a name need not be text.
std::string uriOf(const std::filesystem::path& path) {
    return "file://" + QByteArray::fromStdString(path.native()).toPercentEncoding("/").toStdString();
}

class SessionFileBrowser final : public FileBrowser {
public:
    bool showItem(const std::filesystem::path& path) override { return callFileManager("ShowItems", path); }
    bool showItemProperties(const std::filesystem::path& path) override {
        return callFileManager("ShowItemProperties", path);
    }
    bool openFolder(const std::filesystem::path& folder) override {
        return openWithDefaultProgram(uriOf(folder), stop_.get_token());
    }
    void giveUp() override { stop_.request_stop(); }

private:
    bool callFileManager(const char* method, const std::filesystem::path& path);

    std::stop_source stop_;
};

bool SessionFileBrowser::callFileManager(const char* method, const std::filesystem::path& path) {
    constexpr const char* interface = "org.freedesktop.FileManager1";
    const auto uri = uriOf(path);
    const char* uris[] = {uri.c_str(), nullptr};
    const BusRequest request{interface, "/org/freedesktop/FileManager1", interface, method,
                             variant(g_variant_new("(^ass)", uris, ""))};  // no start-up notification
    return callOnBus(Bus::session, request, replyTimeout, {.stop = stop_.get_token()}) != nullptr;
}

}  // namespace

std::unique_ptr<FileBrowser> FileBrowser::ofSession() { return std::make_unique<SessionFileBrowser>(); }

}  // namespace brimvault::platform
