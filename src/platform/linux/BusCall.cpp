#include "platform/linux/BusCall.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QUuid>
#include <algorithm>
#include <thread>

#include "platform/System.h"

namespace brimvault::platform {

namespace {

// Between looks whether there is an answer: most come at once, and some when the user has decided.
constexpr std::chrono::milliseconds shortestInterval{1};
constexpr std::chrono::milliseconds longestInterval{20};
constexpr std::chrono::milliseconds withdrawalLimit{1000};

// Where the environment names the bus, that one: the library would keep to the first that it was told of.
QDBusConnection connectTo(Bus bus, const QString& name) {
    const bool isSession = bus == Bus::session;
    const auto address =
        system().environmentVariable(isSession ? "DBUS_SESSION_BUS_ADDRESS" : "DBUS_SYSTEM_BUS_ADDRESS");
    return address.empty() ? QDBusConnection::connectToBus(
                                 isSession ? QDBusConnection::SessionBus : QDBusConnection::SystemBus, name)
                           : QDBusConnection::connectToBus(QString::fromStdString(address), name);
}

std::optional<QDBusMessage> call(const QDBusConnection& bus, const QDBusMessage& request,
                                 std::chrono::milliseconds limit, const GivingUp& givingUp) {
    const auto isGivenUp = [&] { return givingUp.isWanted && givingUp.isWanted(); };
    if (!bus.isConnected() || isGivenUp()) {
        return std::nullopt;
    }
    const auto answer = bus.asyncCall(request, static_cast<int>(limit.count()));
    auto interval = shortestInterval;
    while (!answer.isFinished() && !isGivenUp()) {
        std::this_thread::sleep_for(interval);
        interval = std::min(interval * 2, longestInterval);
    }
    if (answer.isFinished()) {
        return answer.isError() ? std::nullopt : std::optional(answer.reply());
    }
    if (givingUp.withdrawal) {
        (void)bus.call(*givingUp.withdrawal, QDBus::Block, static_cast<int>(withdrawalLimit.count()));
    }
    return std::nullopt;
}

}  // namespace

std::optional<QDBusMessage> callOnBus(Bus bus, const QDBusMessage& request, std::chrono::milliseconds limit,
                                      const GivingUp& givingUp) {
    const QString name = QUuid::createUuid().toString();
    auto answer = call(connectTo(bus, name), request, limit, givingUp);
    QDBusConnection::disconnectFromBus(name);
    return answer;
}

// The connection hands over what it was given before it goes.
void sendOnBus(Bus bus, const QDBusMessage& signal) {
    const QString name = QUuid::createUuid().toString();
    (void)connectTo(bus, name).send(signal);
    QDBusConnection::disconnectFromBus(name);
}

}  // namespace brimvault::platform
