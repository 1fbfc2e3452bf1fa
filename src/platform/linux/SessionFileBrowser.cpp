#include <QByteArray>
#include <QDBusMessage>
#include <atomic>
#include <chrono>

#include "platform/FileBrowser.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/DefaultProgram.h"

// File browsers answer to one interface on the session bus, org.freedesktop.FileManager1, which the bus starts one for
// when none is running.

namespace brimvault::platform {

namespace {

constexpr std::chrono::seconds answerLimit{15};  // a file browser that starts from a cold disk takes some seconds

// The bytes of the path, escaped: a name need not be text.
QString uriOf(const std::filesystem::path& path) {
    const QByteArray bytes = QByteArray::fromStdString(path.native());
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding("/"));
}

class SessionFileBrowser final : public FileBrowser {
public:
    bool showItem(const std::filesystem::path& path) override {
        return callFileManager(QStringLiteral("ShowItems"), path);
    }
    bool showItemProperties(const std::filesystem::path& path) override {
        return callFileManager(QStringLiteral("ShowItemProperties"), path);
    }
    bool openFolder(const std::filesystem::path& folder) override {
        return openWithDefaultProgram(uriOf(folder).toStdString(), [this] { return givenUp_.load(); });
    }
    void giveUp() override { givenUp_ = true; }

private:
    bool callFileManager(const QString& method, const std::filesystem::path& path);

    std::atomic<bool> givenUp_ = false;
};

bool SessionFileBrowser::callFileManager(const QString& method, const std::filesystem::path& path) {
    const QString service = QStringLiteral("org.freedesktop.FileManager1");
    auto request =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/FileManager1"), service, method);
    request << QStringList{uriOf(path)} << QString();  // no start-up notification
    return callOnBus(Bus::session, request, answerLimit, {[this] { return givenUp_.load(); }, {}}).has_value();
}

}  // namespace

std::unique_ptr<FileBrowser> FileBrowser::ofSession() { return std::make_unique<SessionFileBrowser>(); }

}  // namespace brimvault::platform
