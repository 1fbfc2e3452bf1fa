#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QMap>
#include <QString>
#include <QVariant>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

#include "platform/Authorization.h"
#include "platform/System.h"
#include "platform/linux/BusCall.h"

// How rights are had of polkit
//
// The right to run the root remover is an action of its own, com.quorvel.brimvault.remove, which is bound to the path
// of that program. Polkit is asked whether this very process, told by its number and the time of its start, may do
// that, first without and then with a question to the user. What the user grants is kept for some minutes, and for this
// process alone. Within them pkexec, which starts the program, asks for its parent, which is this process, and finds
// the right there: the user is not asked a second time.
//
// Where what is granted is not kept (auth_admin: sessions that are not at the machine itself, and an administrator's
// own rules), there would be nothing for the second check to find. There pkexec alone asks, and is waited for until it
// has become the program or has ended.
//
// Whoever could read the memory of this process, or take its descriptors, would have what the user granted to it. From
// the first question on, other processes of the user can do neither (PR_SET_DUMPABLE); one that traces it already can.

namespace brimvault::platform {

struct PolkitSubject {
    QString kind;
    QVariantMap details;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PolkitSubject& subject) {
    argument.beginStructure();
    argument << subject.kind << subject.details;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PolkitSubject& subject) {
    argument.beginStructure();
    argument >> subject.kind >> subject.details;
    argument.endStructure();
    return argument;
}

}  // namespace brimvault::platform

Q_DECLARE_METATYPE(brimvault::platform::PolkitSubject)

namespace brimvault::platform {

namespace {

using Details = QMap<QString, QString>;

constexpr const char* launcher = "/usr/bin/pkexec";
constexpr std::chrono::seconds answerLimit{5};  // for what asks nobody
constexpr std::chrono::milliseconds pollInterval{100};
constexpr std::chrono::milliseconds withoutLimit{std::numeric_limits<int>::max()};

QString actionName() { return QStringLiteral("com.quorvel.brimvault.remove"); }

std::filesystem::path toolPath() { return resourcesFolder() / "BrimvaultCleaner"; }

bool isProgram(const std::filesystem::path& path) { return ::access(path.c_str(), X_OK) == 0; }

// The 22nd field of the record, in the system's ticks; the second is a name in parentheses and may hold anything.
quint64 startOfThisProcess() {
    constexpr int fieldsBetween = 20;  // from the third to the one that is wanted
    std::ifstream file("/proc/self/stat");
    const std::string record{std::istreambuf_iterator<char>(file), {}};
    std::istringstream fields(record.substr(std::min(record.rfind(')') + 1, record.size())));
    std::string field;
    for (int number = 0; number < fieldsBetween && fields >> field; ++number) {
    }
    return QString::fromStdString(field).toULongLong();
}

PolkitSubject thisProcess() {
    return {QStringLiteral("unix-process"),
            {{QStringLiteral("pid"), QVariant::fromValue(static_cast<quint32>(::getpid()))},
             {QStringLiteral("start-time"), QVariant::fromValue(startOfThisProcess())},
             {QStringLiteral("uid"), QVariant::fromValue(static_cast<qint32>(::getuid()))}}};
}

QDBusMessage requestTo(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"),
                                          QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                          QStringLiteral("org.freedesktop.PolicyKit1.Authority"), method);
}

struct Standing {
    bool isAuthorized = false;
    bool isForOneUse = false;  ///< what the user would grant
    QString keptAs;            ///< the name of what was granted for some minutes; empty for a right that is always held
};

std::optional<Standing> standingIn(const QDBusMessage& answer) {
    if (answer.signature() != QLatin1String("(bba{ss})")) {
        return std::nullopt;
    }
    const auto argument = answer.arguments().constFirst().value<QDBusArgument>();
    Standing standing;
    bool isChallenge = false;
    Details details;
    argument.beginStructure();
    argument >> standing.isAuthorized >> isChallenge >> details;
    argument.endStructure();
    standing.isForOneUse =
        isChallenge && details.value(QStringLiteral("polkit.retains_authorization_after_challenge")).isEmpty();
    standing.keptAs = details.value(QStringLiteral("polkit.temporary_authorization_id"));
    return standing;
}

// A few words of environment and no open files: the launcher refuses to work in an environment that it finds odd.
std::optional<pid_t> spawn(std::vector<std::string> words) {
    std::vector<char*> arguments;
    std::transform(words.begin(), words.end(), std::back_inserter(arguments), [](auto& word) { return word.data(); });
    arguments.push_back(nullptr);
    std::string path = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    const std::array<char*, 2> environment = {path.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    }
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    pid_t child = -1;
    const int code = ::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&actions);
    return code == 0 ? std::optional(child) : std::nullopt;
}

class PolkitAuthorization final : public Authorization {
public:
    PolkitAuthorization() {
        qDBusRegisterMetaType<PolkitSubject>();
        qDBusRegisterMetaType<Details>();
        (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    }

    bool copyRights(const std::vector<RightItem>& rights, Interaction interaction,
                    const std::function<bool()>& givesUp) override {
        if (!std::all_of(rights.begin(), rights.end(), isKnown)) {
            return false;
        }
        if (interaction == Interaction::allowed && isForOneUse_) {
            startGivesUp_ = givesUp;
            return true;
        }
        return startGivesUp_ || isActionAuthorized(interaction, givesUp);
    }

    bool executeWithPrivileges(const std::filesystem::path& tool, const std::vector<std::string>& arguments) override {
        std::vector<std::string> words = {launcher, "--disable-internal-agent", tool};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const auto givesUp = std::exchange(startGivesUp_, {});
        const auto child = spawn(std::move(words));
        if (child) {
            tools_.push_back(*child);
        }
        return child && (!givesUp || isGrantedTo(*child, tool, givesUp));
    }

    bool isToolRunning() override {
        const auto last = tools_.empty() ? -1 : tools_.back();
        tools_.erase(std::remove_if(tools_.begin(), tools_.end(), hasEnded), tools_.end());
        return !tools_.empty() && tools_.back() == last;
    }

    void destroyRights() override {
        if (!keptAs_.isEmpty()) {
            auto request = requestTo(QStringLiteral("RevokeTemporaryAuthorizationById"));
            request << keptAs_;
            keptAs_.clear();
            (void)callOnBus(Bus::system, request, answerLimit);
        }
    }

private:
    static bool isKnown(const RightItem& right) {
        return right.name == "system.privilege.admin" && right.value == toolPath().native();
    }

    static bool hasEnded(pid_t tool) {
        const pid_t ended = ::waitpid(tool, nullptr, WNOHANG);
        const bool isNoMoreWaitedFor = ended < 0 && errno == ECHILD;  // the ends of children are being ignored
        return isNoMoreWaitedFor ? ::kill(tool, 0) != 0 && errno != EPERM : ended != 0;
    }

    // The launcher asks, and becomes the program once that is granted.
    bool isGrantedTo(pid_t launched, const std::filesystem::path& tool, const std::function<bool()>& givesUp) {
        constexpr std::size_t maxLength = 15;  // of a name, as the system tells it
        const auto name = tool.filename().native().substr(0, maxLength);
        while (isToolRunning()) {
            if (nameOf(launched) == name) {
                return true;
            }
            if (givesUp()) {
                ::kill(launched, SIGTERM);  // with it goes its question
                return false;
            }
            std::this_thread::sleep_for(pollInterval);
        }
        return false;
    }

    static std::string nameOf(pid_t process) {
        std::ifstream file("/proc/" + std::to_string(process) + "/comm");
        std::string name;
        std::getline(file, name);
        return name;
    }

    bool isActionAuthorized(Interaction interaction, const std::function<bool()>& givesUp) {
        const bool mayAsk = interaction == Interaction::allowed;
        if (mayAsk && !answers_) {
            return false;  // a question would be waited for without end
        }
        const QString question = mayAsk ? QStringLiteral("question") : QString();  // told from others by the connection
        auto request = requestTo(QStringLiteral("CheckAuthorization"));
        request << QVariant::fromValue(thisProcess()) << actionName() << QVariant::fromValue(Details())
                << static_cast<quint32>(mayAsk ? 1 : 0) << question;
        auto withdrawal = requestTo(QStringLiteral("CancelCheckAuthorization"));
        withdrawal << question;
        const auto answer = mayAsk ? callOnBus(Bus::system, request, withoutLimit, {givesUp, withdrawal})
                                   : callOnBus(Bus::system, request, answerLimit);
        answers_ = answer.has_value();
        const auto standing = answer ? standingIn(*answer) : std::nullopt;
        if (!standing) {
            return false;
        }
        isForOneUse_ = standing->isForOneUse;
        keptAs_ = standing->keptAs.isEmpty() ? keptAs_ : standing->keptAs;
        return standing->isAuthorized;
    }

    QString keptAs_;
    bool isForOneUse_ = false;            ///< as was told last
    std::function<bool()> startGivesUp_;  ///< set while the next start may ask
    std::vector<pid_t> tools_;            ///< that have been started, and whose end has not been seen yet
    bool answers_ = true;                 ///< polkit did, when it was asked last
};

}  // namespace

std::unique_ptr<Authorization> Authorization::create() {
    const bool isTrial = systemRoot() != "/";
    return !isTrial && isProgram(launcher) && isProgram(toolPath()) ? std::make_unique<PolkitAuthorization>() : nullptr;
}

std::filesystem::path resourcesFolder() { return BRIMVAULT_RESOURCES_FOLDER; }

}  // namespace brimvault::platform
