#include <chrono>
#include <stop_token>

#include "platform/Workspace.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/DefaultProgram.h"

namespace brimvault::platform {

namespace {

class SessionWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override { return openWithDefaultProgram(url, stop_.get_token()); }
    void announceStart() override {
        constexpr std::chrono::seconds timeout{5};
        broadcastOnBus(Bus::session,
                       {"/com/quorvel/applications", "com.quorvel.Applications", "ApplicationStarted",
                        variant(g_variant_new("(s)", "com.quorvel.brimvault"))},
                       timeout, stop_.get_token());
    }
    void giveUp() override { stop_.request_stop(); }

private:
    std::stop_source stop_;
};

}  // namespace

std::unique_ptr<Workspace> Workspace::ofSession() { return std::make_unique<SessionWorkspace>(); }

}  // namespace brimvault::platform
