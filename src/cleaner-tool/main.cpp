#include <pwd.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
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

// The root remover: BrimvaultCleaner NAME PROCESS
//
// It runs with the administrator's rights and removes what the application, which runs without, asks it to. Whoever
// started it may be hostile, and so may whatever reaches it: it finds out by itself who speaks with it, what it must
// keep and whether the item is what it was a moment ago. It starts no program, reads no file but the user database,
// takes no setting from anywhere, and ends with the application.

namespace {

using namespace brimvault::cleaner;

constexpr std::chrono::seconds patience{10};  // the application gives up waiting for the tool after five

std::filesystem::path homeOf(uid_t user) {
    const passwd* record = ::getpwuid(user);
    if (record == nullptr || record->pw_dir == nullptr || record->pw_dir[0] != '/') {
        return {};
    }
    std::error_code unresolved;
    const auto home = std::filesystem::canonical(record->pw_dir, unresolved);
    return unresolved ? std::filesystem::path() : home;
}

KeptFolders keptFolders(const std::filesystem::path& home) {
    KeptFolders kept;
    for (const auto& folder : systemFolders()) {
        (void)kept.add(folder);
    }
    for (const auto& folder : home.empty() ? std::vector<KeptPath>() : homeFolders(home)) {
        (void)kept.add(folder);
    }
    return kept;
}

int run(const Invocation& invocation) {
    const auto application = ApplicationProcess::ofParent(invocation.application);
    const auto folder = meetingFolder(invocation.user);
    if (!application || !prepareMeetingFolder(folder, invocation.user)) {
        return EXIT_FAILURE;
    }
    const auto home = homeOf(invocation.user);
    if (!giveUpPrivileges()) {
        return EXIT_FAILURE;
    }
    auto kept = keptFolders(home);
    auto connection = awaitClient(folder, invocation.name, {invocation.user, *application}, patience);
    if (!connection.isOpen()) {
        return EXIT_FAILURE;
    }
    const ClientConnection client(std::move(connection), *application);
    Server server({client, kept, trashOfHome(home), invocation.user});
    if (server.serve() == Server::End::atWork) {
        ::_exit(EXIT_FAILURE);  // at once, and with it what is being removed
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) {
    const char* user = std::getenv("PKEXEC_UID");
    const auto invocation = Invocation::of(count, arguments, user);
    if (::geteuid() != 0 || !invocation || !giveUpSurroundings()) {
        return EXIT_FAILURE;
    }
    return run(*invocation);
}
