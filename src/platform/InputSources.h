#pragma once

#include <QStringList>

namespace brimvault::platform {

/// Identifiers of the languages of the keyboard layouts and then of the input methods that the user has enabled, each
/// once; a layout of several languages counts with the one that its country speaks, else its first. Empty when the
/// settings name none. Reads files; any thread.
[[nodiscard]] QStringList currentInputSources();

}  // namespace brimvault::platform
