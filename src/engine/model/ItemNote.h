#pragma once

#include <QString>
#include <QtGlobal>

namespace brimvault::engine {

/// Why an item should be looked at before it is removed.
enum class ItemNote : quint8 {
    none,
    work,        ///< may hold work that exists nowhere else
    offline,     ///< holds content kept for use without a connection
    login,       ///< the user may have to sign in again
    rebuild,     ///< takes long to make again
    download,    ///< will be downloaded again; the argument says how much
    inUse,       ///< the argument names the program that uses it, if it is known
    session,     ///< the desktop session uses it
    copies,      ///< holds working copies of source code
    record,      ///< a record of log-ins or of installed software
    shared,      ///< shares its space with other folders; the argument says how much removing it frees
    emptied,     ///< is emptied; the argument names the program that writes to it, if it is known
    unfinished,  ///< a download that was not finished; the argument is the time of the last change (ISO 8601, UTC)
    deleting,    ///< the desktop is deleting it, or broke off when it did
    report,      ///< of a crash, which may wait to be sent
    command,     ///< nothing but the command of the argument removes it
};

/// Whether an item with the note is ticked by the user's own hand alone: neither with all others nor along with an item
/// that holds it.
[[nodiscard]] constexpr bool isTickedByHandOnly(ItemNote note) {
    return note == ItemNote::work || note == ItemNote::copies || note == ItemNote::inUse;
}

/// Whether the user is asked about an item with the note before it goes. That a log is emptied does no harm.
[[nodiscard]] constexpr bool isWarning(ItemNote note) { return note != ItemNote::none && note != ItemNote::emptied; }

/// How much harm the note warns of, to compare; 0 for none.
[[nodiscard]] int seriousness(ItemNote note);
/// The more serious of two; the first where they are alike.
[[nodiscard]] inline ItemNote moreSerious(ItemNote left, ItemNote right) {
    return seriousness(right) > seriousness(left) ? right : left;
}

/// The note's name in machine-readable output; empty for none.
[[nodiscard]] const char* keyOf(ItemNote note);

/// The note as one sentence in the user's language, without a full stop; empty for none.
[[nodiscard]] QString textOf(ItemNote note, const QString& argument);
/// The same of one that is in use and `unfinished` as well.
[[nodiscard]] QString textOfDownloadUnderWay(const QString& program);

}  // namespace brimvault::engine
