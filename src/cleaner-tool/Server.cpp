#include "cleaner-tool/Server.h"

#include <array>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

#include "cleaner-tool/TrashMove.h"
#include "files/removal/Remove.h"

namespace brimvault::cleaner {

namespace {

constexpr std::chrono::seconds keepAliveInterval{1};

// Shared by a worker thread and the thread that waits for it. The worker closes its end of the pipe when the work is
// done, which poll(2) reports. The waiting thread may leave earlier.
struct Work {
    files::FileDescriptor readEnd;
    files::FileDescriptor writeEnd;
    std::optional<std::string> answer;

    static std::shared_ptr<Work> make() {
        std::array<int, 2> ends{};
        auto work = std::make_shared<Work>();
        if (::pipe(ends.data()) == 0) {
            work->readEnd = files::FileDescriptor(ends[0]);
            work->writeEnd = files::FileDescriptor(ends[1]);
        }
        return work;
    }
};

}  // namespace

Server::End Server::serve() {
    std::array<char, maxMessageLength> bytes{};
    bool goesOn = context_.client.send(*encode(Operation::ready, {&version, 1})) == ClientConnection::Sent::whole;
    while (goesOn) {
        const auto count = context_.client.receive(bytes);
        goesOn = count > 0 && handleReceived({bytes.data(), count});
    }
    return isLeftAtWork_ ? End::atWork : End::idle;
}

bool Server::handleReceived(std::string_view bytes) {
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
    const auto folder = std::exchange(expectedFolder_, std::nullopt);
    switch (request.operation) {
        case Operation::removeFileAtPath:
            return doAndAnswer([this, path, folder] { return remove(path, folder); });
        case Operation::removeToTrashFileAtPath:
            return doAndAnswer([this, path, folder] { return recycle(path, folder); });
        case Operation::expectFolder:
            expectedFolder_ = identityIn(request.content);
            return expectedFolder_.has_value();
        case Operation::keepFolderAtPath:
            return files::isPlainAbsolute(path) && context_.kept.add({path, Keep::itself});
        default:
            return false;  // only the tool sends it
    }
}

Server::Answer Server::remove(const std::filesystem::path& path, const ExpectedFolder& folder) const {
    KeptFoldersGuard guard(context_.kept, folder);
    const auto outcome = files::remove(path, {}, &guard);
    return outcome.end == files::RemovalEnd::gone ? Answer("") : std::nullopt;
}

Server::Answer Server::recycle(const std::filesystem::path& path, const ExpectedFolder& folder) const {
    KeptFoldersGuard guard(context_.kept, folder);
    const auto place = moveToTrash(path, context_.trash, context_.kept.requester(), guard);
    return place ? Answer(place->native()) : std::nullopt;
}

bool Server::doAndAnswer(std::function<Answer()> work) {
    using Sent = ClientConnection::Sent;
    const auto shared = Work::make();
    if (context_.client.hasEnded()) {
        return false;  // the application has reported meanwhile that the item is still there
    }
    if (!shared->readEnd.isOpen()) {
        return context_.client.send(*encode(Operation::failed)) == Sent::whole;
    }
    std::thread worker([shared, work = std::move(work)] {
        shared->answer = work();
        shared->writeEnd = files::FileDescriptor();
    });
    auto event = ClientConnection::Event::timeout;
    while (event == ClientConnection::Event::timeout) {
        event = context_.client.waitFor(shared->readEnd.number(), keepAliveInterval);
        if (event == ClientConnection::Event::timeout) {
            (void)context_.client.send(*encode(Operation::working));  // a full buffer holds earlier ones
        }
    }
    if (event == ClientConnection::Event::end) {
        worker.detach();
        isLeftAtWork_ = true;
        return false;
    }
    worker.join();
    const auto message = shared->answer ? encode(Operation::done, *shared->answer) : encode(Operation::failed);
    return message && context_.client.send(*message) == Sent::whole;
}

}  // namespace brimvault::cleaner
