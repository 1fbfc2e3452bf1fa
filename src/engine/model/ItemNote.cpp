#include "engine/model/ItemNote.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

namespace brimvault::engine {

namespace {

QString dayOf(const QString& time) {
    const auto local = QDateTime::fromString(time, Qt::ISODate).toLocalTime();
    return QLocale().toString(local.date(), QLocale::ShortFormat);
}

}  // namespace

int seriousness(ItemNote note) {
    switch (note) {
        case ItemNote::work:
            return 5;
        case ItemNote::copies:
            return 4;
        case ItemNote::inUse:
            return 3;
        case ItemNote::emptied:
            return 1;
        case ItemNote::none:
            return 0;
        default:
            return 2;
    }
}

const char* keyOf(ItemNote note) {
    switch (note) {
        case ItemNote::none:
            return "";
        case ItemNote::work:
            return "work";
        case ItemNote::offline:
            return "offline";
        case ItemNote::login:
            return "login";
        case ItemNote::rebuild:
            return "rebuild";
        case ItemNote::download:
            return "download";
        case ItemNote::inUse:
            return "in-use";
        case ItemNote::session:
            return "session";
        case ItemNote::copies:
            return "copies";
        case ItemNote::record:
            return "record";
        case ItemNote::shared:
            return "shared";
        case ItemNote::emptied:
            return "emptied";
        case ItemNote::unfinished:
            return "unfinished";
        case ItemNote::deleting:
            return "deleting";
        case ItemNote::report:
            return "report";
        case ItemNote::command:
            return "command";
    }
    Q_UNREACHABLE();
}

QString textOf(ItemNote note, const QString& argument) {
    const auto text = [](const char* source) { return QCoreApplication::translate("ItemNote", source); };
    switch (note) {
        case ItemNote::none:
            return {};
        case ItemNote::work:
            return text(QT_TRANSLATE_NOOP("ItemNote", "May hold work that exists nowhere else"));
        case ItemNote::offline:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Holds content kept for use without a connection"));
        case ItemNote::login:
            return text(QT_TRANSLATE_NOOP("ItemNote", "You may have to sign in again"));
        case ItemNote::rebuild:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Takes long to make again"));
        case ItemNote::download:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Will be downloaded again: %1")).arg(argument);
        case ItemNote::inUse:
            return argument.isEmpty() ? text(QT_TRANSLATE_NOOP("ItemNote", "A program is running and uses it"))
                                      : text(QT_TRANSLATE_NOOP("ItemNote", "%1 is running and uses it")).arg(argument);
        case ItemNote::session:
            return text(
                QT_TRANSLATE_NOOP("ItemNote", "The desktop session uses it; best removed just before logging out"));
        case ItemNote::copies:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Holds working copies of source code"));
        case ItemNote::record:
            return text(QT_TRANSLATE_NOOP("ItemNote", "A record of log-ins or of installed software"));
        case ItemNote::shared:
            return text(
                       QT_TRANSLATE_NOOP("ItemNote", "Shares its space with other folders; removing it frees about %1"))
                .arg(argument);
        case ItemNote::emptied:
            return argument.isEmpty()
                       ? text(QT_TRANSLATE_NOOP("ItemNote", "Is emptied, because a program still writes to it"))
                       : text(QT_TRANSLATE_NOOP("ItemNote", "Is emptied, because %1 still writes to it")).arg(argument);
        case ItemNote::unfinished:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Unfinished, last written on %1")).arg(dayOf(argument));
        case ItemNote::deleting:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Being deleted"));
        case ItemNote::report:
            return text(QT_TRANSLATE_NOOP("ItemNote", "May still be wanted to report a crash"));
        case ItemNote::command:
            return text(QT_TRANSLATE_NOOP("ItemNote", "Only the system removes it: %1")).arg(argument);
    }
    Q_UNREACHABLE();
}

QString textOfDownloadUnderWay(const QString& program) {
    return program.isEmpty() ? QCoreApplication::translate("ItemNote", "Unfinished; a program is writing to it")
                             : QCoreApplication::translate("ItemNote", "Unfinished; %1 is writing to it").arg(program);
}

}  // namespace brimvault::engine
