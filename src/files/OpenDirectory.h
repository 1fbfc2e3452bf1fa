#pragma once

namespace brimvault::files {

/// What opening directories asks of the system. Each answers a descriptor, or -1 with errno set. Any thread.

/// A name in an open directory, to be listed: ENOTDIR for a link or a file, EXDEV where another mount begins; ".." is
/// the directory that holds it.
[[nodiscard]] int openOnSameMount(int directory, const char* name);

/// An absolute path, following no link on the way or at its end (ENOTDIR), to reach what is inside. It need not be
/// readable, and cannot be listed.
[[nodiscard]] int openWithoutLinks(const char* path);
/// The same of a name in an open directory, on whatever mount it is.
[[nodiscard]] int openChildWithoutLinks(int directory, const char* name);

}  // namespace brimvault::files
