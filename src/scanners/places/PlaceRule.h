#pragma once

#include <span>

#include "engine/model/ItemNote.h"

namespace brimvault::scanners {

// The rows of resources/places/, which the build compiles into the program: they are never read at run time, since who
// could change them could have anything removed. The files themselves say what each field means.

/// Where a rule's patterns begin.
enum class PlaceBase {
    cache,      ///< every caches folder
    profile,    ///< every profile of a browser or of a program built on one
    home,       ///< the user's home folder
    cacheHome,  ///< XDG_CACHE_HOME, and so on
    configHome,
    dataHome,
    stateHome,
    goPath,      ///< GOPATH, where it is set
    goModCache,  ///< GOMODCACHE, where it is set
    system,      ///< the root of the file system
    anywhere,    ///< the patterns are names of folders, wherever they are
};

/// What of a match is listed.
enum class PlaceShape { entry, children, cache, profile, files };

/// The later answer is the stricter.
enum class PlaceAnswer {
    ticked,
    unticked,
    shown,  ///< listed, and never removed
    spared
};

/// How a program is known to run, beside the files that it holds open: by the records of its package system, or by the
/// lock in a profile of one of the two families of browsers.
struct PlaceRunning {
    bool flatpak = false;
    bool snap = false;
    bool chromium = false;
    bool mozilla = false;
};

/// What must be true of a match, else the rule says nothing of it.
struct PlaceEvidence {
    bool olderThanADay = false;
    bool youngerThanADay = false;
    bool open = false;  ///< by another program
    bool tagged = false;
    bool coreDump = false;
};

struct PlaceRule {
    using Names = std::span<const char* const>;

    const char* id;
    PlaceBase base;
    Names patterns;  ///< relative paths; see `PlacePattern`
    PlaceShape shape;
    const char* row;  ///< the part of the patterns whose matches are one row each; empty for one row a match
    Names keep;
    const char* holds;    ///< empty for nothing
    const char* grammar;  ///< of the names of files, a regular expression; empty for other shapes
    int depth;            ///< levels below the match where files are looked for as well
    PlaceEvidence evidence;
    PlaceAnswer answer;
    engine::ItemNote note;
    const char* command;  ///< by which the system removes what is only shown
    PlaceRunning running;
    const char* title;  ///< empty for the match's name
};

/// The rules of the Caches section, in the order of the file.
[[nodiscard]] std::span<const PlaceRule> cachesRules();
/// Those of the Logs section.
[[nodiscard]] std::span<const PlaceRule> logsRules();

}  // namespace brimvault::scanners
