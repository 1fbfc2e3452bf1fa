#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "cleaner-tool/ApplicationProcess.h"
#include "cleaner-tool/ClientConnection.h"
#include "cleaner-tool/Confinement.h"
#include "cleaner-tool/Invocation.h"
#include "cleaner-tool/KeptFolders.h"
#include "cleaner-tool/MeetingPoint.h"
#include "cleaner-tool/Server.h"
#include "cleaner-tool/TrashMove.h"
#include "cleaner-tool/protocol/MeetingPlace.h"
#include "files/NodeStatus.h"

// The root remover: BrimvaultCleaner NAME PROCESS
//
// It runs with the administrator's rights and removes what the application, which runs without, asks it to. Whoever
// started it may be hostile, and so may whatever reaches it: it finds out by itself who speaks with it, what it must
// keep and whether the item is what it was a moment ago. It starts no program, is told nothing but its two arguments
// and who started it, asks the system for that user's home folder and the time, and ends with the application.

namespace {

using namespace brimvault::cleaner;
namespace files = brimvault::files;

constexpr std::chrono::seconds patience{10};  // the application gives up waiting for the tool after five

// The user's own folder, or none: a home that belongs to somebody else opens nothing.
std::filesystem::path homeOf(uid_t user) {
    const passwd* record = ::getpwuid(user);
    if (record == nullptr || record->pw_dir == nullptr || record->pw_dir[0] != '/') {
        return {};
    }
    std::error_code unresolved;
    auto home = std::filesystem::canonical(record->pw_dir, unresolved);
    const auto status = files::statusOf(home);
    const bool isUsers = !unresolved && status && status->owner == user;
    return isUsers ? std::move(home) : std::filesystem::path();
}

std::optional<KeptFolders> keptFolders(uid_t user, const std::filesystem::path& home) {
    KeptFolders kept(user);
    auto folders = systemFolders();
    if (!home.empty()) {
        const auto ofHome = homeFolders(home);
        folders.insert(folders.end(), ofHome.begin(), ofHome.end());
    }
    const bool all = std::all_of(folders.begin(), folders.end(), [&](const auto& folder) { return kept.add(folder); });
    return all && kept.lookUp() ? std::optional(std::move(kept)) : std::nullopt;
}

int run(const Invocation& invocation) {
    const auto application = ApplicationProcess::ofParent(invocation.application);
    const auto folder = meetingFolder(invocation.user);
    if (!application || !giveUpPrivileges() || !prepareMeetingFolder(folder, invocation.user)) {
        return EXIT_FAILURE;
    }
    application->endWithIt();
    const auto home = homeOf(invocation.user);
    auto kept = keptFolders(invocation.user, home);
    auto connection = kept ? awaitClient(folder, invocation.name, {invocation.user, *application}, patience)
                           : Descriptor();  // what cannot be kept is not put at risk
    if (!connection.isOpen()) {
        return EXIT_FAILURE;
    }
    const ClientConnection client(std::move(connection), *application);
    Server server({client, *kept, trashOfHome(home), invocation.user});
    if (server.serve() == Server::End::atWork) {
        ::_exit(EXIT_FAILURE);  // at once, and with it what is being removed
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const char* user = std::getenv("PKEXEC_UID");
        const auto invocation = Invocation::of(count, arguments, user);
        if (::geteuid() != 0 || !invocation || !giveUpSurroundings()) {
            return EXIT_FAILURE;
        }
        return run(*invocation);
    } catch (...) {
        return EXIT_FAILURE;  // there is nobody to tell
    }
}
