#include "engine/model/NotCleanedRows.h"

#include <gmock/gmock.h>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::NotCleanedApplications;
using engine::NotCleanedRows;
using engine::NotRemovedDictionary;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const NotRemovedDictionary twoFailures = {{QStringLiteral("disk-image"), QStringLiteral("Permission denied")},
                                          {QStringLiteral("archive"), QStringLiteral("Read-only file system")}};

NotRemovedDictionary oneFailure(const char* name) {
    return {{QString::fromUtf8(name), QStringLiteral("Device or resource busy")}};
}

}  // namespace

TEST(NotCleanedRowsTest, NothingThatStayedGivesNoRows) {
    EXPECT_THAT(NotCleanedRows({}, {}, {}, {}, {}).pNotCleanedMessages(), IsEmpty());
    const NotRemovedDictionary none;
    const NotCleanedRows rows(NotCleanedApplications(), none, none, none, none);
    EXPECT_THAT(rows.pNotCleanedMessages(), IsEmpty());
    EXPECT_THAT(rows.pGroupRows(), IsEmpty());
    EXPECT_FALSE(rows.isGroupRow(0));
}

TEST(NotCleanedRowsTest, OneSectionIsATitleAndItsMessages) {
    const NotCleanedRows rows({}, {}, {}, twoFailures, {});
    EXPECT_THAT(rows.pNotCleanedMessages(),
                ElementsAre(QStringLiteral("Trash"), QStringLiteral("archive - Read-only file system"),
                            QStringLiteral("disk-image - Permission denied")));
    EXPECT_THAT(rows.pGroupRows(), ElementsAre(0));
    EXPECT_TRUE(rows.isGroupRow(0));
    EXPECT_FALSE(rows.isGroupRow(1));
    EXPECT_FALSE(rows.isGroupRow(-1));
}

TEST(NotCleanedRowsTest, SectionsComeInTheirOrderWithTheirTitles) {
    const NotCleanedRows rows(NotCleanedApplications{{QStringLiteral("Chess"), 1}, {QStringLiteral("Writer"), 5}},
                              oneFailure("d"), oneFailure("c"), oneFailure("t"), oneFailure("l"));
    EXPECT_THAT(
        rows.pNotCleanedMessages(),
        ElementsAre(QStringLiteral("Language Resources"), QStringLiteral("Chess - 1 language resource was not removed"),
                    QStringLiteral("Writer - 5 language resources were not removed"), QStringLiteral("Downloads"),
                    QStringLiteral("d - Device or resource busy"), QStringLiteral("Caches"),
                    QStringLiteral("c - Device or resource busy"), QStringLiteral("Trash"),
                    QStringLiteral("t - Device or resource busy"), QStringLiteral("Logs"),
                    QStringLiteral("l - Device or resource busy")));
    EXPECT_THAT(rows.pGroupRows(), ElementsAre(0, 3, 5, 7, 9));
}

TEST(NotCleanedRowsTest, ACountBelowTwoIsTheSingular) {
    const NotCleanedRows rows(NotCleanedApplications{{QStringLiteral("a"), 0}, {QStringLiteral("b"), 2}}, {}, {}, {},
                              {});
    EXPECT_EQ(rows.line(1), QStringLiteral("a - 1 language resource was not removed"));
    EXPECT_EQ(rows.line(2), QStringLiteral("b - 2 language resources were not removed"));
}

TEST(NotCleanedRowsTest, NamesThatLookLikePlacesForOthersStandAsTheyAre) {
    const NotCleanedRows rows(NotCleanedApplications{{QStringLiteral("%2 %1"), 7}}, {},
                              NotRemovedDictionary{{QStringLiteral("%1%2"), QStringLiteral("%1")}}, {}, {});
    EXPECT_EQ(rows.line(1), QStringLiteral("%2 %1 - 7 language resources were not removed"));
    EXPECT_EQ(rows.line(3), QStringLiteral("%1%2 - %1"));
}

TEST(NotCleanedRowsTest, AMessageIsShownOnOneLineAndKeptAsItIs) {
    const NotCleanedRows rows({}, {}, {}, {}, oneFailure("a\nb\r\u2028c"));
    EXPECT_EQ(rows.pNotCleanedMessages().at(1), QString::fromUtf8("a\nb\r\u2028c - Device or resource busy"));
    EXPECT_EQ(rows.line(1), QStringLiteral("a b  c - Device or resource busy"));
    EXPECT_EQ(rows.line(2), QString());
}

TEST(NotCleanedRowsTest, TextOfRowsHasTitlesAboveWhatIsTakenFromTheirSections) {
    const NotCleanedRows rows({}, oneFailure("d"), {}, twoFailures, oneFailure("l"));
    EXPECT_EQ(rows.plainText({4}), QStringLiteral("Trash\ndisk-image - Permission denied"));
    EXPECT_EQ(rows.plainText({1, 2, 3, 4}),
              QStringLiteral("Downloads\nd - Device or resource busy\n"
                             "Trash\narchive - Read-only file system\ndisk-image - Permission denied"));
    EXPECT_EQ(rows.plainText({0, 2, 5}), QString()) << "titles alone say nothing";
    EXPECT_EQ(rows.plainText({-1, 6, 7}), QStringLiteral("Logs\nl - Device or resource busy"));
    EXPECT_EQ(rows.titleOf(6), QStringLiteral("Logs"));
    EXPECT_EQ(rows.titleOf(5), QString());
}

TEST(NotCleanedRowsTest, WithoutItsMessagesItHasNoRowsOfAnyKind) {
    NotCleanedRows rows({}, {}, {}, twoFailures, {});
    rows.removeMessages();
    EXPECT_EQ(rows.count(), 0);
    EXPECT_FALSE(rows.isGroupRow(0));
    EXPECT_THAT(rows.pGroupRows(), ElementsAre(0));
}

}  // namespace brimvault::tests
