#include "platform/DisplayText.h"

#include <gtest/gtest.h>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using platform::displayText;

TEST(DisplayText, ShowsPlainNamesAsTheyAre) {
    for (const char* name : {"", "report.txt", "caf\xc3\xa9", "\xe6\x97\xa5\xe6\x9c\xac", "\xf0\x9f\x98\x80", "a b",
                             "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d"}) {
        EXPECT_EQ(displayText(name), QString::fromUtf8(name));
    }
}

TEST(DisplayText, ReplacesWhatIsNotToBeSeen) {
    for (const std::string unseen : {"\n", "\r", "\t", "\x1b", "\x7f", "\xff", "\xe2\x80\xa8", "\xe2\x80\xa9",
                                     "\xe2\x80\xaa", "\xe2\x80\xae", "\xe2\x81\xa6", "\xe2\x81\xa9", "\xc2\x85"}) {
        EXPECT_EQ(displayText("a" + unseen + "b"), QStringLiteral(u"a\ufffdb")) << testing::PrintToString(unseen);
    }
}

TEST(DisplayText, ReplacesEveryByteOfABrokenCharacterAndNothingElse) {
    EXPECT_TRUE(displayText("\xc3(x").endsWith(QStringLiteral("(x")));
    EXPECT_TRUE(displayText("\xed\xa0\x80").contains(QChar::ReplacementCharacter));  // half a pair
}

}  // namespace brimvault::tests
