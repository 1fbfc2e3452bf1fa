#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "cleaner-tool/ApplicationProcess.h"
#include "cleaner-tool/ClientConnection.h"
#include "cleaner-tool/Confinement.h"
#include "cleaner-tool/Invocation.h"
#include "cleaner-tool/KeptFolders.h"
#include "cleaner-tool/ListeningSocket.h"
#include "cleaner-tool/PinnedFolder.h"
#include "cleaner-tool/Requester.h"
#include "cleaner-tool/Server.h"
#include "cleaner-tool/TrashMove.h"
#include "cleaner-tool/protocol/SocketPath.h"

// The root remover: BrimvaultCleaner NAME PROCESS
//
// It runs with the administrator's rights and removes what the application, which runs without, asks it to. Whoever
// started it may be hostile, and so may whatever reaches it: it finds out by itself who speaks with it, what it must
// keep and whether the item is what it was a moment ago. It starts no program, is told nothing but its two arguments
// and who started it, asks the system for that user's home folder and the time, and ends with the application.

namespace {

using namespace brimvault::cleaner;

constexpr std::chrono::seconds connectTimeout{10};  // the application stops waiting for the tool after five

// By its path without links; whether it is the user's own is seen where it is pinned.
std::optional<std::filesystem::path> homeOf(uid_t user) {
    const passwd* record = ::getpwuid(user);
    const bool isKnown = record != nullptr && record->pw_dir != nullptr && record->pw_dir[0] == '/';
    return isKnown ? withoutSystemLinks(record->pw_dir) : std::nullopt;
}

void pin(KeptFolders& kept, const std::filesystem::path& path, uid_t owner) {
    if (auto folder = PinnedFolder::open(path, owner)) {
        kept.add(std::move(*folder));
    }
}

// None where something cannot be kept: what cannot be kept is not put at risk.
std::optional<KeptFolders> keptFolders(Requester requester, const std::optional<std::filesystem::path>& home) {
    constexpr uid_t administrator = 0;
    KeptFolders kept(std::move(requester));
    std::vector<KeptPath> folders = systemFolders();
    if (home) {
        pin(kept, *home, kept.requester().user);
        for (const auto& folder : sectionFoldersOf(*home)) {
            folders.push_back({folder, Keep::itself});
        }
    }
    for (const auto& folder : sharedSectionFolders()) {
        pin(kept, folder, administrator);
    }
    const bool all = std::all_of(folders.begin(), folders.end(), [&](const auto& folder) { return kept.add(folder); });
    return all && kept.lookUp() ? std::optional(std::move(kept)) : std::nullopt;
}

int run(const Invocation& invocation) {
    const auto application = ApplicationProcess::ofParent(invocation.application);
    const auto folder = socketFolder(invocation.user);
    if (!application || !giveUpPrivileges() || !prepareSocketFolder(folder, invocation.user)) {
        return EXIT_FAILURE;
    }
    application->endWithIt();
    const Client expected{invocation.user, *application};
    auto connection = acceptClient(folder, invocation.name, expected, connectTimeout);
    auto requester = connection.isOpen() ? Requester::ofPeer(connection.number()) : std::nullopt;
    const auto home = homeOf(invocation.user);
    auto kept = requester ? keptFolders(std::move(*requester), home) : std::nullopt;
    if (!kept) {
        return EXIT_FAILURE;
    }
    const ClientConnection client(std::move(connection), expected);
    Server server({client, *kept, trashOfHome(home.value_or(""))});
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
