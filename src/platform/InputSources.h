#pragma once

#include <QStringList>

namespace brimvault::platform {

/// Identifiers of the languages of the keyboard layouts that the user has enabled, each once, in the order of the
/// layouts; a layout of several languages counts with the one that its country speaks, else its first. Empty when the
/// settings name no layout. Reads files; any thread.
[[nodiscard]] QStringList currentInputSources();

}  // namespace brimvault::platform
