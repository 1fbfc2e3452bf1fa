#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>
#include <utility>

#include "platform/Authorization.h"
#include "platform/System.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/StopEvent.h"

// How authorization works
//
// The right to run the root remover is a polkit action of its own, com.quorvel.brimvault.remove, which is bound to the
// path of that program. Polkit is asked whether this very process, identified by its process ID and start time, may do
// that: first without, then with a question to the user. Polkit keeps what the user grants for some minutes, for this
// process alone. When pkexec then starts the program, it checks its parent, which is this process, and finds the grant:
// the user is not asked a second time.
//
// Some grants are not kept (auth_admin: sessions that are not at the machine itself, and rules of an administrator):
// pkexec's check would not find them. There only pkexec asks, and this process waits until pkexec has become the
// program or has ended.
//
// A process that reads the memory of this one, or takes its descriptors, has what the user granted. So from the first
// question on other processes of the user can do neither (PR_SET_DUMPABLE); one that traces it already still can.

namespace brimvault::platform {

namespace {

constexpr const char* launcher = "/usr/bin/pkexec";
constexpr const char* action = "com.quorvel.brimvault.remove";
constexpr std::chrono::seconds checkTimeout{5};  // for what asks nobody
constexpr std::chrono::milliseconds noTimeout{std::numeric_limits<int>::max()};

bool isProgram(const std::filesystem::path& path) { return ::access(path.c_str(), X_OK) == 0; }

// The 22nd field of /proc/PID/stat, in clock ticks; the second is a name in parentheses and may hold anything.
std::uint64_t startOfThisProcess() {
    constexpr int fieldsBetween = 20;  // from the third to the one that is wanted
    std::ifstream file("/proc/self/stat");
    const std::string record{std::istreambuf_iterator<char>(file), {}};
    std::istringstream fields(record.substr(std::min(record.rfind(')') + 1, record.size())));
    std::string field;
    for (int number = 0; number < fieldsBetween && fields >> field; ++number) {
    }
    return std::strtoull(field.c_str(), nullptr, 10);
}

BusRequest requestTo(const char* method, GVariant* arguments) {
    return {"org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
            "org.freedesktop.PolicyKit1.Authority", method, variant(arguments)};
}

// Whether this process may do the action. The name of the question lets the same connection withdraw it.
BusRequest checkRequest(Interaction interaction, const char* question) {
    GVariantBuilder process;
    g_variant_builder_init(&process, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&process, "{sv}", "pid", g_variant_new_uint32(static_cast<guint32>(::getpid())));
    g_variant_builder_add(&process, "{sv}", "start-time", g_variant_new_uint64(startOfThisProcess()));
    g_variant_builder_add(&process, "{sv}", "uid", g_variant_new_int32(static_cast<gint32>(::getuid())));
    const guint32 flags = interaction == Interaction::allowed ? 1 : 0;
    return requestTo("CheckAuthorization",
                     g_variant_new("((sa{sv})sa{ss}us)", "unix-process", &process, action, nullptr, flags, question));
}

struct CheckResult {
    bool isAuthorized = false;
    bool isForOneUse = false;  ///< what the user would grant
    std::string grant;         ///< the name of a temporary grant; empty for a right that is always held
};

std::string detail(GVariant* details, const char* key) {
    const char* text = "";
    (void)g_variant_lookup(details, key, "&s", &text);
    return text;
}

std::optional<CheckResult> resultIn(const Variant& reply) {
    if (!reply || g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("((bba{ss}))")) == FALSE) {
        return std::nullopt;
    }
    gboolean isAuthorized = FALSE;
    gboolean isChallenge = FALSE;
    GVariant* taken = nullptr;
    g_variant_get(reply.get(), "((bb@a{ss}))", &isAuthorized, &isChallenge, &taken);
    const Variant details(taken);
    const bool isKept = !detail(taken, "polkit.retains_authorization_after_challenge").empty();
    return CheckResult{isAuthorized != FALSE, isChallenge != FALSE && !isKept,
                       detail(taken, "polkit.temporary_authorization_id")};
}

class PolkitAuthorization final : public Authorization {
public:
    PolkitAuthorization() { (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0); }

    bool copyRights(const std::vector<RightItem>& rights, Interaction interaction,
                    const std::stop_token& stop) override {
        if (!std::all_of(rights.begin(), rights.end(), isKnown)) {
            return false;
        }
        if (interaction == Interaction::allowed && isForOneUse_) {
            startStop_ = stop;
            return true;
        }
        return startStop_ || isActionAuthorized(interaction, stop);
    }

    // With a minimal environment: pkexec refuses to work in one that it finds odd.
    bool executeWithPrivileges(const std::filesystem::path& tool, const std::vector<std::string>& arguments) override {
        ProgramStart start{.words = {launcher, "--disable-internal-agent", tool},
                           .environment = {"PATH=/usr/sbin:/usr/bin:/sbin:/bin"}};
        start.words.insert(start.words.end(), arguments.begin(), arguments.end());
        const auto stop = std::exchange(startStop_, std::nullopt);
        auto child = ChildProcess::start(start);
        if (!child) {
            return false;
        }
        tools_.push_back(std::move(*child));
        return !stop || isStartGranted(tool, *stop);
    }

    bool isToolRunning() override {
        const auto last = tools_.empty() ? -1 : tools_.back().id();
        std::erase_if(tools_, [](ChildProcess& tool) { return tool.hasEnded(); });
        return !tools_.empty() && tools_.back().id() == last;
    }

    void destroyRights() override {
        if (!grant_.empty()) {
            const auto request = requestTo("RevokeTemporaryAuthorizationById", g_variant_new("(s)", grant_.c_str()));
            grant_.clear();
            (void)callOnBus(Bus::system, request, checkTimeout, {});
        }
    }

private:
    static bool isKnown(const RightItem& right) {
        return right.name == "system.privilege.admin" && right.value == rootRemoverPath().native();
    }

    // Whether pkexec, which was started last and asks the user, becomes the program. Its end and a stop end the wait at
    // once; nothing reports that a process executes another program, so its name is polled for that.
    bool isStartGranted(const std::filesystem::path& tool, const std::stop_token& stop) {
        constexpr std::chrono::milliseconds pollInterval{100};
        constexpr std::size_t maxLength = 15;  // of a process's name in /proc
        const auto name = tool.filename().native().substr(0, maxLength);
        const StopEvent stopped(stop);
        while (isToolRunning()) {
            if (nameOf(tools_.back().id()) == name) {
                return true;
            }
            if (stop.stop_requested()) {
                (void)::kill(tools_.back().id(), SIGTERM);  // which ends its question
                return false;
            }
            pollfd events[] = {{tools_.back().descriptor(), POLLIN, 0}, {stopped.descriptor(), POLLIN, 0}};
            waitForAny(events, std::chrono::steady_clock::now() + pollInterval);
        }
        return false;
    }

    static std::string nameOf(pid_t process) {
        std::ifstream file("/proc/" + std::to_string(process) + "/comm");
        std::string name;
        std::getline(file, name);
        return name;
    }

    bool isActionAuthorized(Interaction interaction, const std::stop_token& stop) {
        const bool mayAsk = interaction == Interaction::allowed;
        if (mayAsk && !answers_) {
            return false;  // a question has no timeout
        }
        const char* question = mayAsk ? "question" : "";
        const auto request = checkRequest(interaction, question);
        const auto withdrawal = requestTo("CancelCheckAuthorization", g_variant_new("(s)", question));
        const auto reply = mayAsk ? callOnBus(Bus::system, request, noTimeout, {stop, &withdrawal})
                                  : callOnBus(Bus::system, request, checkTimeout, {stop});
        const auto result = resultIn(reply);
        answers_ = reply != nullptr;
        if (!result) {
            return false;
        }
        isForOneUse_ = result->isForOneUse;
        grant_ = result->grant.empty() ? grant_ : result->grant;
        return result->isAuthorized;
    }

    std::string grant_;                         ///< the temporary grant to give back; empty for none
    bool isForOneUse_ = false;                  ///< a grant would be, by the last check
    std::optional<std::stop_token> startStop_;  ///< set while the next start may ask: ends that
    std::vector<ChildProcess> tools_;           ///< that have been started and not been reaped
    bool answers_ = true;                       ///< polkit did, when it was asked last
};

}  // namespace

std::unique_ptr<Authorization> Authorization::create() {
    const bool isTrial = systemRoot() != "/";
    return !isTrial && isProgram(launcher) && isProgram(rootRemoverPath()) ? std::make_unique<PolkitAuthorization>()
                                                                           : nullptr;
}

std::filesystem::path rootRemoverPath() {
    return std::filesystem::path(BRIMVAULT_RESOURCES_FOLDER) / "BrimvaultCleaner";
}

}  // namespace brimvault::platform
