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
#include "cleaner-tool/SymbolicLinks.h"
#include "cleaner-tool/TrashMove.h"
#include "cleaner-tool/protocol/SocketPath.h"

// The root remover: BrimvaultCleaner NAME PROCESS
//
// It runs as root and removes what the application, which does not, asks it to remove. Whoever started it may be
// hostile, and so may everything that reaches it: the tool itself checks who its peer is, which folders it must keep,
// and that the item is still the one that it looked at. It starts no program. Apart from requests its input is two
// arguments, PKEXEC_UID, that user's home folder in the user database, and the time. It ends with the application.

namespace {

using namespace brimvault::cleaner;

constexpr std::chrono::seconds connectTimeout{10};  // the application stops waiting for the tool after five

// The home's path without symbolic links; that the user owns it is checked when it is pinned.
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

// None where a folder cannot be kept: then nothing is removed at all.
std::optional<KeptFolders> keptFolders(Requester requester, const std::optional<std::filesystem::path>& home) {
    constexpr uid_t root = 0;
    KeptFolders kept(std::move(requester));
    std::vector<KeptPath> folders = systemFolders();
    if (home) {
        pin(kept, *home, kept.requester().user);
        for (const auto& folder : sectionFoldersOf(*home)) {
            folders.push_back({folder, Keep::itself});
        }
        const auto more = foldersOfProgramsIn(*home);
        folders.insert(folders.end(), more.begin(), more.end());
    }
    for (const auto& folder : sharedSectionFolders()) {
        pin(kept, folder, root);
    }
    const bool all = std::all_of(folders.begin(), folders.end(), [&](const auto& folder) { return kept.add(folder); });
    return all && kept.lookUp() ? std::optional(std::move(kept)) : std::nullopt;
}

int run(const Invocation& invocation) {
    const auto application = ApplicationProcess::ofParent(invocation.application);
    const auto folder = socketFolder(invocation.user);
    if (!application || !dropPrivileges() || !prepareSocketFolder(folder, invocation.user)) {
        return EXIT_FAILURE;
    }
    application->exitAfterItEnds();
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
        ::_exit(EXIT_FAILURE);  // at once, in the middle of that removal
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const char* user = std::getenv("PKEXEC_UID");
        const auto invocation = Invocation::of(count, arguments, user);
        if (::geteuid() != 0 || !invocation || !resetInheritedState()) {
            return EXIT_FAILURE;
        }
        return run(*invocation);
    } catch (...) {
        return EXIT_FAILURE;  // there is nobody to report it to
    }
}
