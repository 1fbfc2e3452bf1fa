#include <QDBusMessage>
#include <atomic>

#include "platform/Workspace.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/DefaultProgram.h"

namespace brimvault::platform {

namespace {

class SessionWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override {
        return openWithDefaultProgram(url, [this] { return givenUp_.load(); });
    }
    void announceStart() override {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/com/quorvel/applications"),
                                                 QStringLiteral("com.quorvel.Applications"),
                                                 QStringLiteral("ApplicationStarted"));
        signal << QStringLiteral("com.quorvel.brimvault");
        sendOnBus(Bus::session, signal);
    }
    void giveUp() override { givenUp_ = true; }

private:
    std::atomic<bool> givenUp_ = false;
};

}  // namespace

std::unique_ptr<Workspace> Workspace::ofSession() { return std::make_unique<SessionWorkspace>(); }

}  // namespace brimvault::platform
