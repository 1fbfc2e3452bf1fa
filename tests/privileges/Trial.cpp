#include "privileges/Trial.h"

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <fstream>
#include <map>
#include <stdexcept>
#include <thread>

#include "engine/notification/Notifications.h"
#include "support/HeardNotifications.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

namespace fs = std::filesystem;

namespace {

std::vector<int> lifelines;  // writing ends of pipes: the processes that read from them end with this one

// The reading end of a pipe whose writing end closes with the calling process, however that ends. PR_SET_PDEATHSIG
// would not do: it cannot signal a process with more rights.
int endOfLifeline() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    lifelines.push_back(ends[1]);
    return ends[0];
}

void closeLifelines() {
    for (const int lifeline : lifelines) {
        ::close(lifeline);
    }
}

int linesOf(const fs::path& file) {
    std::ifstream stream(file);
    int lines = 0;
    for (std::string line; std::getline(stream, line);) {
        ++lines;
    }
    return lines;
}

struct SignalRequest {
    int signal;
    pid_t process;
};

fs::path questionsOf(const User& user) { return fs::path("/run") / (std::string("questions-") + user.name); }

}  // namespace

void become(const User& user) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(user.number) != 0 || ::setuid(user.number) != 0) {
        throw std::runtime_error("cannot become another user");
    }
}

AdministratorsHand::AdministratorsHand() {
    int answers[2];
    const int requests = endOfLifeline();
    if (::pipe2(answers, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    requests_ = lifelines.back();
    answers_ = answers[0];
    if (::fork() == 0) {
        closeLifelines();
        SignalRequest request{};
        while (::read(requests, &request, sizeof request) == static_cast<ssize_t>(sizeof request)) {
            const int result = ::kill(request.process, request.signal);
            (void)!::write(answers[1], &result, sizeof result);
        }
        ::_exit(0);
    }
}

void AdministratorsHand::send(int signal, pid_t process) const {
    const SignalRequest request{signal, process};
    int result = -1;
    if (process <= 0 || ::write(requests_, &request, sizeof request) < 0 ||
        ::read(answers_, &result, sizeof result) < 0 || result != 0) {
        throw std::runtime_error("the signal was not sent");
    }
}

void startAgent(pid_t process, Agent agent, const fs::path& questions) {
    fs::remove(questions);
    if (agent == Agent::none) {
        return;
    }
    const int lifeline = endOfLifeline();
    if (::fork() == 0) {
        ::dup2(lifeline, STDIN_FILENO);
        const auto number = std::to_string(process);
        const char* decision = agent == Agent::grants ? "grant" : agent == Agent::refuses ? "refuse" : "hesitate";
        ::execl("/usr/bin/python3", "python3", BRIMVAULT_TEST_AGENT, number.c_str(), decision, questions.c_str(),
                nullptr);
        ::_exit(1);
    }
    if (!comes([&] { return linesOf(questions) > 0; })) {
        throw std::runtime_error("the agent is not ready");
    }
}

pid_t startIdler(const User& user) {
    const int lifeline = endOfLifeline();
    const pid_t idler = ::fork();
    if (idler == 0) {
        closeLifelines();
        become(user);
        char nothing = 0;
        (void)!::read(lifeline, &nothing, 1);
        ::_exit(0);
    }
    return idler;
}

struct Trial::Running {
    static inline int count = 1;
    static inline char name[] = "trial";
    static inline char* arguments[] = {name, nullptr};

    explicit Running(const fs::path& home) : home_(home) {}

    QCoreApplication application{count, arguments};
    fs::path home_;
    std::map<std::string, std::string> environment;
    std::unique_ptr<SubstituteHome> system = std::make_unique<SubstituteHome>(home_, environment);
    std::unique_ptr<HeardNotifications> heard;
    engine::FCutter cutter{engine::CleanTable::fileSections(engine::Remover::GetInstance())};
};

Trial::Trial(const User& user, Agent agent) : user_(user), questions_(questionsOf(user)) {
    startAgent(::getpid(), agent, questions_);
    become(user);
    running_ = std::make_unique<Running>(user.home());
}

Trial::~Trial() { engine::Remover::GetInstance().giveUp(); }

engine::Remover& Trial::remover() const { return engine::Remover::GetInstance(); }

void Trial::beginClean(const std::vector<std::string>& names) {
    engine::ItemArray items;
    for (const auto& name : names) {
        const auto item = engine::FFItem::initWithPath(caches() / name, 1);
        item->setPpbDeletable(true);
        item->setPpbChecked(true);
        items.append(item);
    }
    running_->heard = std::make_unique<HeardNotifications>(std::initializer_list<QString>{
        engine::notification::cleanFinished, engine::vocabulary(engine::Section::caches).cleanFinished});
    running_->cutter.Clean({}, {}, items, {}, {});
}

Trial::Result Trial::finishClean() {
    if (!comes([this] { return running_->heard->has(engine::notification::cleanFinished); })) {
        throw std::runtime_error("the clean does not come to its end");
    }
    const auto words = engine::vocabulary(engine::Section::caches);
    const auto post = running_->heard->last(words.cleanFinished);
    using Reasons = engine::NotRemovedDictionary;
    Result result;
    const auto removed = engine::getArrayPropfromNotification<engine::ItemArray>(post, words.arrayKey);
    result.removed = static_cast<std::size_t>(removed ? removed->size() : 0);
    const auto reasons = engine::getDictionaryPropfromNotification<Reasons>(post, words.notCleanedKey);
    for (auto reason = reasons->begin(); reason != reasons->end(); ++reason) {
        result.notRemoved[reason.key().toStdString()] = reason.value().toStdString();
    }
    return result;
}

Trial::Result Trial::clean(const std::vector<std::string>& names) {
    beginClean(names);
    return finishClean();
}

void Trial::stopClean() { running_->cutter.cancelCleanAll(); }

int Trial::questions() const { return std::max(0, linesOf(questions_) - 1); }

pid_t Trial::tool() const { return toolOf(::getpid()); }

void Trial::loseSystemBus() {
    running_->environment = {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/no-bus"}};
    running_->system.reset();
    running_->system = std::make_unique<SubstituteHome>(running_->home_, running_->environment);
}

void makeHome(const User& user) {
    for (const auto& entry : fs::directory_iterator(user.home())) {
        removeTree(entry.path());
    }
    for (const auto& folder : {user.home() / "Library", user.home() / "Library" / "Caches"}) {
        fs::create_directory(folder);
        if (::chown(folder.c_str(), user.number, user.number) != 0) {
            throw std::runtime_error("the home folder cannot be given to its user");
        }
    }
}

void makeLockedFolder(const User& user, const std::string& name, int files) {
    const auto folder = user.home() / "Library" / "Caches" / name;
    for (int number = 0; number < files; ++number) {
        writeFile(folder / std::to_string(number % 10) / std::to_string(number), "not the user's");
    }
}

// The main thread can have ended while another one still runs.
bool isAlive(pid_t process) {
    const auto folder = fs::path("/proc") / std::to_string(process);
    std::ifstream status(folder / "stat");
    std::string record;
    std::getline(status, record);
    const auto end = record.rfind(')');
    if (end == std::string::npos || end + 2 >= record.size()) {
        return false;
    }
    std::error_code gone;
    int threads = 0;
    for (fs::directory_iterator thread(folder / "task", gone); !gone && thread != fs::end(thread);
         thread.increment(gone)) {
        ++threads;
    }
    return threads > 1 || (record[end + 2] != 'Z' && record[end + 2] != 'X');
}

pid_t toolOf(pid_t application) {
    for (const auto& entry : fs::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "cmdline");
        std::string words{std::istreambuf_iterator<char>(file), {}};
        const auto number = '\0' + std::to_string(application) + '\0';
        if (words.find("/BrimvaultCleaner") != std::string::npos && words.ends_with(number)) {
            const auto process = static_cast<pid_t>(std::stol(entry.path().filename()));
            if (isAlive(process)) {
                return process;
            }
        }
    }
    return 0;
}

bool comes(const std::function<bool()>& condition, std::chrono::seconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace brimvault::tests
