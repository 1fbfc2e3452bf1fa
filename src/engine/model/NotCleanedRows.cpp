#include "engine/model/NotCleanedRows.h"

#include <QCoreApplication>
#include <QStringBuilder>
#include <algorithm>

namespace brimvault::engine {

namespace {

QString applicationMessage(const QString& name, int count) {
    if (count >= 2) {
        return QCoreApplication::translate("NotCleaned", "%1 - %2 language resources were not removed")
            .arg(name, QString::number(count));
    }
    return QCoreApplication::translate("NotCleaned", "%1 - 1 language resource was not removed").arg(name);
}

bool breaksLine(QChar character) {
    return character == QLatin1Char('\n') || character == QLatin1Char('\r') || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

}  // namespace

NotCleanedRows::NotCleanedRows(const std::optional<NotCleanedApplications>& apps,
                               const std::optional<NotRemovedDictionary>& dwns,
                               const std::optional<NotRemovedDictionary>& caches,
                               const std::optional<NotRemovedDictionary>& trash,
                               const std::optional<NotRemovedDictionary>& logs) {
    if (apps && !apps->isEmpty()) {
        addApplications(*apps);
    }
    addFiles(QCoreApplication::translate("Section", "Downloads"), dwns);
    addFiles(QCoreApplication::translate("Section", "Caches"), caches);
    addFiles(QCoreApplication::translate("Section", "Trash"), trash);
    addFiles(QCoreApplication::translate("Section", "Logs"), logs);
}

void NotCleanedRows::addTitle(const QString& title) {
    pGroupRows_.append(count());
    pNotCleanedMessages_.append(title);
}

void NotCleanedRows::addApplications(const NotCleanedApplications& applications) {
    addTitle(QCoreApplication::translate("Section", "Language Resources"));
    for (const auto& [name, left] : applications.asKeyValueRange()) {
        pNotCleanedMessages_.append(applicationMessage(name, left));
    }
}

void NotCleanedRows::addFiles(const QString& title, const std::optional<NotRemovedDictionary>& files) {
    if (!files || files->isEmpty()) {
        return;
    }
    addTitle(title);
    pNotCleanedMessages_.reserve(pNotCleanedMessages_.size() + files->size());
    for (const auto& [name, reason] : files->asKeyValueRange()) {
        pNotCleanedMessages_.append(name % QLatin1String(" - ") % reason);
    }
}

bool NotCleanedRows::isGroupRow(int row) const {
    return row < count() && std::binary_search(pGroupRows_.begin(), pGroupRows_.end(), row);
}

QString NotCleanedRows::line(int row) const {
    QString text = pNotCleanedMessages_.value(row);
    if (std::any_of(text.cbegin(), text.cend(), breaksLine)) {
        std::replace_if(text.begin(), text.end(), breaksLine, QLatin1Char(' '));
    }
    return text;
}

// -1 for a row that is no message.
int NotCleanedRows::titleRowOf(int row) const {
    if (row < 0 || row >= count() || isGroupRow(row)) {
        return -1;
    }
    return *std::prev(std::upper_bound(pGroupRows_.begin(), pGroupRows_.end(), row));
}

QString NotCleanedRows::titleOf(int row) const { return line(titleRowOf(row)); }

QString NotCleanedRows::plainText(const QList<int>& rows) const {
    QString text;
    int lastTitle = -1;
    for (const int row : rows) {
        const int title = titleRowOf(row);
        if (title < 0) {
            continue;
        }
        if (title != lastTitle) {
            text += line(title) + QLatin1Char('\n');
            lastTitle = title;
        }
        text += line(row) + QLatin1Char('\n');
    }
    text.chop(1);
    return text;
}

}  // namespace brimvault::engine
