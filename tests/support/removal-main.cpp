// Removes one item when its input ends: `removal-trial PATH`. Between "ready" and its answer ("gone", "cancelled",
// or "kept NUMBER PATH") it does nothing but the removal, so that whoever attaches to it meanwhile sees that alone.

#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <string>

#include "files/trees/Remove.h"

namespace {

using brimvault::files::RemovalEnd;

void say(const std::string& text) { (void)!::write(STDOUT_FILENO, text.data(), text.size()); }

void waitForEndOfInput() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (::poll(&input, 1, -1) != 1) {
    }
}

std::string answerOf(const brimvault::files::RemovalOutcome& outcome) {
    switch (outcome.end) {
        case RemovalEnd::gone:
            return outcome.failure ? "gone with a failure" : "gone";
        case RemovalEnd::cancelled:
            return "cancelled";
        case RemovalEnd::kept:
            break;
    }
    return outcome.failure ? "kept " + std::to_string(outcome.failure->code) + " " + outcome.failure->path.native()
                           : "kept without a failure";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const std::filesystem::path path(argv[1]);
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);  // where only parents may trace
    say("ready\n");
    waitForEndOfInput();
    say(answerOf(brimvault::files::remove(path)));
    ::_exit(0);
}
