#include "cleaner-tool/Server.h"

#include <array>
#include <chrono>
#include <memory>
#include <thread>

#include "cleaner-tool/TrashMove.h"
#include "files/trees/Remove.h"

namespace brimvault::cleaner {

namespace {

constexpr std::chrono::seconds signOfLife{1};

// What is done on a thread, and who waits for it: closing its end of the pipe tells that it is done. Whoever waits may
// leave before.
struct Work {
    files::FileDescriptor done;
    files::FileDescriptor tell;
    std::optional<std::string> answer;

    static std::shared_ptr<Work> make() {
        std::array<int, 2> ends{};
        auto work = std::make_shared<Work>();
        if (::pipe(ends.data()) == 0) {
            work->done = files::FileDescriptor(ends[0]);
            work->tell = files::FileDescriptor(ends[1]);
        }
        return work;
    }
};

}  // namespace

Server::End Server::serve() {
    std::array<char, maxMessageLength> bytes{};
    bool goesOn = setting_.client.send(*encode(Operation::ready, {&version, 1})) == ClientConnection::Sent::whole;
    while (goesOn) {
        const auto count = setting_.client.receive(bytes);
        goesOn = count > 0 && handleWhatHasCome({bytes.data(), count});
    }
    return isLeftAtWork_ ? End::atWork : End::idle;
}

bool Server::handleWhatHasCome(std::string_view bytes) {
    while (!bytes.empty()) {
        bytes.remove_prefix(reader_.feed(bytes));
        const auto request = reader_.take();
        if (reader_.isBroken() || (request && !handle(*request))) {
            return false;
        }
    }
    return true;
}

bool Server::handle(const Message& request) {
    const std::filesystem::path path = request.content;
    switch (request.operation) {
        case Operation::removeFileAtPath:
            return doAndAnswer([this, path] { return remove(path); });
        case Operation::removeToTrashFileAtPath:
            return doAndAnswer([this, path] { return recycle(path); });
        case Operation::keepFolderAtPath:
            return files::isPlainAbsolute(path) && setting_.kept.add({path, Keep::itself});
        default:
            return false;  // what only the tool says
    }
}

Server::Answer Server::remove(const std::filesystem::path& path) const {
    KeptFoldersGuard guard(setting_.kept);
    const auto outcome = files::remove(path, {}, &guard);
    return outcome.end == files::RemovalEnd::gone ? Answer("") : std::nullopt;
}

Server::Answer Server::recycle(const std::filesystem::path& path) const {
    KeptFoldersGuard guard(setting_.kept);
    const auto place = moveToTrash(path, setting_.trash, setting_.kept.requester(), guard);
    return place ? Answer(place->native()) : std::nullopt;
}

bool Server::doAndAnswer(std::function<Answer()> work) {
    using Sent = ClientConnection::Sent;
    const auto shared = Work::make();
    if (setting_.client.hasEnded()) {
        return false;  // who asked has given up meanwhile, and reported that the item is still there
    }
    if (!shared->done.isOpen()) {
        return setting_.client.send(*encode(Operation::failed)) == Sent::whole;
    }
    std::thread worker([shared, work = std::move(work)] {
        shared->answer = work();
        shared->tell = files::FileDescriptor();
    });
    auto event = ClientConnection::Event::timeOut;
    while (event == ClientConnection::Event::timeOut) {
        event = setting_.client.waitFor(shared->done.number(), signOfLife);
        if (event == ClientConnection::Event::timeOut) {
            (void)setting_.client.send(*encode(Operation::working));  // where there is no room, life is plain to see
        }
    }
    if (event == ClientConnection::Event::end) {
        worker.detach();
        isLeftAtWork_ = true;
        return false;
    }
    worker.join();
    const auto message = shared->answer ? encode(Operation::done, *shared->answer) : encode(Operation::failed);
    return message && setting_.client.send(*message) == Sent::whole;
}

}  // namespace brimvault::cleaner
