#pragma once

#include <QList>
#include <QStringList>
#include <optional>

#include "engine/notification/Notification.h"

namespace brimvault::engine {

/// The rows of the report of what a clean could not remove: for every section in which something stayed its title, and
/// below it a message for each item. A value; one thread at a time.
class NotCleanedRows {
public:
    NotCleanedRows() = default;
    /// A section with none, or with an empty dictionary, has no rows.
    NotCleanedRows(const std::optional<NotCleanedApplications>& apps, const std::optional<NotRemovedDictionary>& dwns,
                   const std::optional<NotRemovedDictionary>& caches, const std::optional<NotRemovedDictionary>& trash,
                   const std::optional<NotRemovedDictionary>& logs);

    /// Titles and messages, in the order in which they are shown.
    [[nodiscard]] const QStringList& pNotCleanedMessages() const { return pNotCleanedMessages_; }
    /// The rows that are titles, from the top.
    [[nodiscard]] const QList<int>& pGroupRows() const { return pGroupRows_; }
    [[nodiscard]] bool isGroupRow(int row) const;
    [[nodiscard]] int count() const { return static_cast<int>(pNotCleanedMessages_.size()); }
    void removeMessages() { pNotCleanedMessages_.clear(); }

    /// A row's text with line breaks replaced by spaces; empty for a row out of range.
    [[nodiscard]] QString line(int row) const;
    /// The title above a message; empty if the row is no message.
    [[nodiscard]] QString titleOf(int row) const;
    /// For the clipboard: the messages among the rows (ascending), one to a line, under the titles of their sections.
    [[nodiscard]] QString plainText(const QList<int>& rows) const;

private:
    void addTitle(const QString& title);
    void addApplications(const NotCleanedApplications& applications);
    void addFiles(const QString& title, const std::optional<NotRemovedDictionary>& files);
    [[nodiscard]] int titleRowOf(int row) const;

    QStringList pNotCleanedMessages_;
    QList<int> pGroupRows_;
};

}  // namespace brimvault::engine
