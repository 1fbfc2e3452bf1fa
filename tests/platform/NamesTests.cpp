#include <gmock/gmock.h>

#include <QCollator>
#include <random>

#include "platform/text/DisplayText.h"
#include "platform/text/NameKey.h"
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
    EXPECT_TRUE(displayText("\xc3(x").endsWith(QStringLiteral("(x")));
    EXPECT_TRUE(displayText("\xed\xa0\x80").contains(QChar::ReplacementCharacter));  // half a pair
}

// The same order as the text library's own comparison of the whole texts.
TEST(NameKey, OrdersAsTheUsersLanguageDoes) {
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    const QStringList parts = QStringLiteral("a|B|ä|10|9|009|.|-| |é|ß|日|_|com").split(u'|');
    std::mt19937 random(7);
    const auto anyText = [&] {
        QString text;
        for (auto count = random() % 5; count > 0; --count) {
            text += parts[static_cast<qsizetype>(random() % static_cast<std::size_t>(parts.size()))];
        }
        return text;
    };
    for (int round = 0; round < 5000; ++round) {
        const QString keys[] = {anyText(), round % 2 == 0 ? anyText() : QString()};
        const QString wholes[] = {keys[0] + anyText(), round % 3 == 0 ? keys[1] : keys[1] + anyText()};
        const int byKey = collator.compare(keys[0], keys[1]);
        const int expected = byKey != 0 ? byKey : collator.compare(wholes[0], wholes[1]);
        const platform::NameKey left(keys[0], wholes[0]);
        const platform::NameKey right(keys[1], wholes[1]);
        ASSERT_EQ(sign(left.compare(right)), sign(expected))
            << wholes[0].toStdString() << " and " << wholes[1].toStdString();
    }
}

}  // namespace brimvault::tests
