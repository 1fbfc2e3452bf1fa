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

/// Answers the client's requests, one after the other. A worker thread carries each out, so that the end of the
/// application is noticed at once. One thread.
class Server {
public:
    /// The client and the kept folders must outlive the server.
    struct Context {
        const ClientConnection& client;
        KeptFolders& kept;
        std::filesystem::path trash;  ///< of the user
    };
    explicit Server(Context context) : context_(std::move(context)) {}

    enum class End {
        idle,    ///< no removal goes on
        atWork,  ///< a removal still goes on, on its worker thread
    };
    /// Returns when the connection ends, or anything but a request arrives.
    [[nodiscard]] End serve();

private:
    using Answer = std::optional<std::string>;  ///< the content of `done`; none for `failed`

    bool handleReceived(std::string_view bytes);
    bool handle(const Message& request);
    bool doAndAnswer(std::function<Answer()> work);
    using ExpectedFolder = std::optional<files::FileIdentity>;
    [[nodiscard]] Answer remove(const std::filesystem::path& path, const ExpectedFolder& folder) const;
    [[nodiscard]] Answer recycle(const std::filesystem::path& path, const ExpectedFolder& folder) const;

    Context context_;
    MessageReader reader_;
    ExpectedFolder expectedFolder_;  ///< of the item of the next request
    bool isLeftAtWork_ = false;
};

}  // namespace brimvault::cleaner
