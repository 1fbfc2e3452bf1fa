#pragma once

#include <QStringList>

namespace brimvault::platform {

/// Identifiers of the languages of the keyboard layouts, then of the input methods, that the user has enabled, each
/// once. A layout of several languages counts as that of its country, else as its first. Empty when the settings name
/// none. Reads files; any thread.
[[nodiscard]] QStringList currentInputSources();

}  // namespace brimvault::platform
