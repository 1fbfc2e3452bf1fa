#include "platform/linux/DefaultProgram.h"

#include <QStandardPaths>
#include <chrono>

#include "platform/linux/ChildProcess.h"
#include "platform/linux/StopEvent.h"

namespace brimvault::platform {

// Some openers end when the thing is open, others when it is closed. The opener leads a session, so that what it opens
// does not end with this program.
bool openWithDefaultProgram(const std::string& uri, const std::stop_token& stop) {
    constexpr std::chrono::seconds openerTimeout{3};  // an opener that has not failed by then has opened it
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    const StopEvent stopped(stop);
    if (opener.isEmpty() || stop.stop_requested() || !stopped.isOpen()) {
        return false;
    }
    auto child = ChildProcess::start({.words = {opener.toStdString(), uri},
                                      .environment = currentEnvironment(),
                                      .leads = ProgramStart::Leads::session,
                                      .streams = ProgramStart::Streams::inherited});
    if (!child) {
        return false;
    }
    pollfd events[] = {{child->descriptor(), POLLIN, 0}, {stopped.descriptor(), POLLIN, 0}};
    waitForAny(events, std::chrono::steady_clock::now() + openerTimeout);
    if (child->hasEnded()) {
        return child->hasSucceeded();
    }
    ChildProcess::reapInBackground(*child);
    return !stop.stop_requested();
}

}  // namespace brimvault::platform
