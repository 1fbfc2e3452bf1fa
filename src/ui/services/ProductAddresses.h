#pragma once

#include <QString>

/// Where the product and its makers are met.
namespace brimvault::ui {

/// Reserved names that lead nowhere, until there is a page and a mailbox.
[[nodiscard]] inline QString productPage() { return QStringLiteral("https://brimvault.example/"); }
[[nodiscard]] inline QString supportRecipient() { return QStringLiteral("support@brimvault.example"); }

}  // namespace brimvault::ui
