#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cleaner-tool/ClientConnection.h"
#include "cleaner-tool/KeptFolders.h"
#include "cleaner-tool/protocol/Protocol.h"

namespace brimvault::cleaner {

/// Answers the client's requests, one after the other. What is asked for is done on a thread of its own, so that the
/// end of the application is seen at once. One thread.
class Server {
public:
    /// Both outlive it.
    struct Setting {
        const ClientConnection& client;
        KeptFolders& kept;
        std::filesystem::path trash;  ///< of the user
    };
    explicit Server(Setting setting) : setting_(std::move(setting)) {}

    enum class End {
        idle,    ///< nothing is being done any more
        atWork,  ///< a removal still goes on, on its thread
    };
    /// Until the connection ends, or brings what is no request.
    [[nodiscard]] End serve();

private:
    using Answer = std::optional<std::string>;  ///< the content, of a request that was done

    bool handleWhatHasCome(std::string_view bytes);
    bool handle(const Message& request);
    bool doAndAnswer(std::function<Answer()> work);
    [[nodiscard]] Answer remove(const std::filesystem::path& path) const;
    [[nodiscard]] Answer recycle(const std::filesystem::path& path) const;

    Setting setting_;
    MessageReader reader_;
    bool isLeftAtWork_ = false;
};

}  // namespace brimvault::cleaner
