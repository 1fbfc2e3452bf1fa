#pragma once

#include <QString>
#include <string>

namespace brimvault::ui {

/// A mail as it is handed to the user's mail program, where the user reads it before it goes. A value.
struct MailMessage {
    QString recipient;  ///< empty to let the user choose
    QString subject;
    QString body;  ///< lines end with "\n"

    /// A "mailto:" URL, each part escaped by its bytes in UTF-8.
    [[nodiscard]] std::string url() const;
};

}  // namespace brimvault::ui
