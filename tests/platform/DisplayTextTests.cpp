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
    for (const char* name : {"a\nb", "a\rb", "a\tb",
                             "a\x1b"
                             "b",
                             "a\x7f"
                             "b",
                             "a\xff"
                             "b",
                             "a\xe2\x80\xa8"
                             "b",
                             "a\xe2\x80\xa9"
                             "b",
                             "a\xe2\x80\xae"
                             "b",
                             "a\xe2\x81\xa6"
                             "b",
                             "a\xc2\x85"
                             "b"}) {
        EXPECT_EQ(displayText(name), QStringLiteral(u"a\ufffdb")) << testing::PrintToString(name);
    }
}

TEST(DisplayText, ReplacesEveryByteOfABrokenCharacterAndNothingElse) {
    EXPECT_TRUE(displayText("\xc3(x").endsWith(QStringLiteral("(x")));
    EXPECT_TRUE(displayText("\xed\xa0\x80").contains(QChar::ReplacementCharacter));  // half a pair
}

}  // namespace brimvault::tests
