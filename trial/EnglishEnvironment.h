#pragma once

#include <QByteArray>

namespace brimvault::trial {

/// Whatever language the user reads, from now on the system's texts, dates and numbers are the plain ones that tests
/// compare with. Before there is an application, and any thread beside the main one.
inline void speakEnglish() {
    qunsetenv("LANGUAGE");
    qputenv("LC_ALL", "C.UTF-8");
}

}  // namespace brimvault::trial
