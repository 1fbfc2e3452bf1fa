#include "privileges/Trial.h"

#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>
#include <thread>

#include "engine/notification/Notifications.h"
#include "engine/removal/FCutter.h"
#include "engine/removal/Remover.h"
#include "files/FileDescriptor.h"
#include "support/HeardNotifications.h"
#include "support/SubstituteHome.h"

namespace brimvault::tests {

namespace {

constexpr const char* sentSignals = "/run/sent-signals";

int linesOf(const fs::path& file) { return static_cast<int>(std::ranges::count(contentOf(file), '\n')); }

void makeFolderOf(const User& user, const fs::path& folder) {
    fs::create_directory(folder);
    if (::chown(folder.c_str(), user.number, user.number) != 0) {
        throw std::runtime_error("a folder cannot be given to its user");
    }
}

}  // namespace

void become(const User& user) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(user.number) != 0 || ::setuid(user.number) != 0) {
        throw std::runtime_error("cannot become another user");
    }
}

// The end of the pipe to it, which is never closed before, ends it. PR_SET_PDEATHSIG would not do: it cannot signal a
// process with more rights.
void startAgent(pid_t process, Agent agent, const fs::path& questions) {
    fs::remove(questions);
    if (agent == Agent::none) {
        return;
    }
    const char* decision = agent == Agent::grants ? "grant" : agent == Agent::refuses ? "refuse" : "hesitate";
    const auto command = std::string("exec /usr/bin/python3 " BRIMVAULT_TEST_AGENT " ") + std::to_string(process) +
                         " " + decision + " " + questions.native();
    if (::popen(command.c_str(), "we") == nullptr || !comes([&] { return linesOf(questions) > 0; })) {
        throw std::runtime_error("the agent is not ready");
    }
}

struct Trial::Running {
    static inline int count = 1;
    static inline char name[] = "trial";
    static inline char* arguments[] = {name, nullptr};

    Running(const User& user, std::map<std::string, std::string> environment)
        : system(user.home(), std::move(environment)) {}

    QCoreApplication application{count, arguments};
    SubstituteHome system;
    std::unique_ptr<HeardNotifications> heard;
    engine::FCutter cutter{engine::CleanTable::fileSections(engine::Remover::GetInstance())};
};

Trial::Trial(const User& user, Agent agent, std::map<std::string, std::string> environment)
    : user_(user),
      questions_(fs::path("/run") / (std::string("questions-") + user.name)),
      administrator_(::popen((std::string("exec sh >>") + sentSignals).c_str(), "we")) {
    startAgent(::getpid(), agent, questions_);
    become(user);
    running_ = std::make_unique<Running>(user, std::move(environment));
}

Trial::~Trial() { engine::Remover::GetInstance().giveUp(); }

void Trial::beginClean(const Names& names) {
    engine::ItemArray items;
    for (const auto& name : names) {
        const auto item = engine::FFItem::initWithPath(user_.caches() / name, 1);
        item->setPpbDeletable(true);
        item->setPpbChecked(true);
        items.append(item);
    }
    running_->heard = std::make_unique<HeardNotifications>(std::initializer_list<QString>{
        engine::notification::cleanFinished, engine::vocabulary(engine::Section::caches).cleanFinished});
    running_->cutter.Clean({}, {}, items, {}, {});
}

std::string Trial::finishClean(std::size_t removed, const Names& stay) {
    if (!comes([this] { return running_->heard->has(engine::notification::cleanFinished); })) {
        return "the clean does not come to its end";
    }
    const auto words = engine::vocabulary(engine::Section::caches);
    const auto post = running_->heard->last(words.cleanFinished);
    const auto gone = engine::getArrayPropfromNotification<engine::ItemArray>(post, words.arrayKey);
    const auto reasons =
        engine::getDictionaryPropfromNotification<engine::NotRemovedDictionary>(post, words.notCleanedKey);
    auto found = "removed " + std::to_string(gone ? gone->size() : 0);
    for (auto reason = reasons->begin(); reason != reasons->end(); ++reason) {
        found += ", not " + reason.key().toStdString() + ": " + reason.value().toStdString();
    }
    auto wanted = "removed " + std::to_string(removed);
    for (const auto& name : stay) {
        wanted += ", not " + name + ": " + std::strerror(EACCES);
    }
    return found == wanted ? "" : found;
}

std::string Trial::clean(const Names& names, const Names& stay) {
    beginClean(names);
    return finishClean(names.size() - stay.size(), stay);
}

void Trial::stopClean() { running_->cutter.cancelCleanAll(); }

std::string Trial::expectQuestions(int count) const {
    const int found = std::max(0, linesOf(questions_) - 1);
    return found == count ? "" : "asked " + std::to_string(found) + " times";
}

bool Trial::hearsCalls(int count) const {
    return comes([&] { return linesOf(questions_) == count + 1; });
}

pid_t Trial::tool() const { return toolOf(::getpid()); }

void Trial::sendAsAdministrator(int signal, pid_t process) const {
    const int before = linesOf(sentSignals);
    if (process <= 0 || std::fprintf(administrator_, "kill -%d %d && echo sent\n", signal, process) < 0 ||
        std::fflush(administrator_) != 0 || !comes([&] { return linesOf(sentSignals) > before; })) {
        throw std::runtime_error("the signal was not sent");
    }
}

void makeHome(const User& user) {
    for (const auto& entry : fs::directory_iterator(user.home())) {
        removeTree(entry.path());
        fs::remove(entry.path());  // of a link
    }
    makeFolderOf(user, user.home() / "Library");
    makeFolderOf(user, user.caches());
}

void makeTrash(const User& user) {
    for (const char* folder : {"", "share", "share/Trash", "share/Trash/files", "share/Trash/info"}) {
        makeFolderOf(user, user.home() / ".local" / folder);
    }
}

void makeLockedFolder(const User& user, const std::string& name, int files) {
    for (int number = 0; number < files; ++number) {
        writeFile(user.caches() / name / std::to_string(number % 10) / std::to_string(number), "not the user's");
    }
}

pid_t toolOf(pid_t application) {
    const auto number = '\0' + std::to_string(application) + '\0';
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const auto words = contentOf(entry.path() / "cmdline");
        if (words.find("/BrimvaultCleaner") != std::string::npos && words.ends_with(number)) {
            return static_cast<pid_t>(std::stol(entry.path().filename()));  // a process that has ended has no words
        }
    }
    return 0;
}

bool ends(pid_t process, std::chrono::milliseconds timeout) {
    const files::FileDescriptor held(static_cast<int>(::syscall(SYS_pidfd_open, process, 0U)));
    pollfd end{held.number(), POLLIN, 0};
    return !held.isOpen() || ::poll(&end, 1, static_cast<int>(timeout.count())) != 0;
}

std::string endOf(pid_t child) {
    int status = 0;
    if (!ends(child)) {
        ::kill(child, SIGKILL);
        return "it does not end";
    }
    const bool isReaped = ::waitpid(child, &status, 0) == child;
    return isReaped && WIFEXITED(status) ? std::to_string(WEXITSTATUS(status)) : "it was killed";
}

bool holdsInOtherProcess(const std::function<bool()>& condition) {
    const pid_t other = ::fork();
    if (other == 0) {
        ::_exit(condition() ? 0 : 1);
    }
    return endOf(other) == "0";
}

void pauseUntilParentEnds() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
    ::pause();
    ::_exit(0);
}

bool comes(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace brimvault::tests
