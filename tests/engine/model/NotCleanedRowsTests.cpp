#include "engine/model/NotCleanedRows.h"

#include <gmock/gmock.h>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::NotCleanedApplications;
using engine::NotCleanedRows;
using engine::NotRemovedDictionary;
using testing::ElementsAre;

namespace {

QString text(const char* utf8) { return QString::fromUtf8(utf8); }

NotRemovedDictionary failure(const char* name, const char* reason = "busy") { return {{text(name), text(reason)}}; }

}  // namespace

// Names that look like places for others stand as they are.
TEST(NotCleanedRowsTest, SectionsComeInTheirOrderBelowTheirTitles) {
    const NotCleanedRows rows(
        NotCleanedApplications{{text("%2 %1"), 7}, {text("a"), 0}, {text("b"), 1}, {text("c"), 2}},
        failure("%1%2", "%1"), failure("c"), failure("t"), failure("a\nb\r\u2028c\u2029d"));
    EXPECT_EQ(rows.pNotCleanedMessages().join(QLatin1Char('|')),
              text("Language Resources|%2 %1 - 7 language resources were not removed|"
                   "a - 1 language resource was not removed|b - 1 language resource was not removed|"
                   "c - 2 language resources were not removed|"
                   "Downloads|%1%2 - %1|Caches|c - busy|Trash|t - busy|Logs|a\nb\r\u2028c\u2029d - busy"));
    EXPECT_EQ(rows.line(12), text("a b  c d - busy")) << "shown on one line";
    EXPECT_THAT(rows.pGroupRows(), ElementsAre(0, 5, 7, 9, 11));
    for (int row = -1; row < 13; ++row) {
        EXPECT_EQ(rows.isGroupRow(row), rows.pGroupRows().contains(row)) << row;
    }
}

TEST(NotCleanedRowsTest, TextOfRowsHasTitlesAboveWhatIsTakenFromTheirSections) {
    NotCleanedRows rows({}, failure("d"), {}, NotRemovedDictionary{{text("a"), text("1")}, {text("b"), text("2")}},
                        failure("l"));
    EXPECT_EQ(rows.plainText({4}), text("Trash\nb - 2"));
    EXPECT_EQ(rows.plainText({1, 2, 3, 4}), text("Downloads\nd - busy\nTrash\na - 1\nb - 2"));
    EXPECT_EQ(rows.plainText({0, 2, 5}), QString()) << "titles alone say nothing";
    EXPECT_EQ(rows.plainText({-1, 6, 7}), text("Logs\nl - busy"));
    EXPECT_EQ(rows.line(7), QString());
    EXPECT_EQ(rows.titleOf(6), text("Logs"));
    EXPECT_EQ(rows.titleOf(5), QString());
    rows.removeMessages();
    EXPECT_EQ(rows.count(), 0);
    EXPECT_FALSE(rows.isGroupRow(0));
    EXPECT_EQ(rows.pGroupRows().size(), 3);
    const NotRemovedDictionary none;
    EXPECT_THAT(NotCleanedRows(NotCleanedApplications(), none, {}, none, {}).pGroupRows(), testing::IsEmpty());
}

}  // namespace brimvault::tests
