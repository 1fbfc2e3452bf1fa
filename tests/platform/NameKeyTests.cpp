#include "platform/NameKey.h"

#include <gmock/gmock.h>

#include <QCollator>
#include <random>

namespace brimvault::tests {

// The same order as the text library's own comparison of the whole texts.
TEST(NameKey, OrdersAsTheUsersLanguageDoes) {
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    const QStringList parts = {QStringLiteral("a"), QStringLiteral("B"),   QStringLiteral("ä"), QStringLiteral("10"),
                               QStringLiteral("9"), QStringLiteral("009"), QStringLiteral("."), QStringLiteral("-"),
                               QStringLiteral(" "), QStringLiteral("é"),   QStringLiteral("ß"), QStringLiteral("日"),
                               QStringLiteral("_"), QStringLiteral("com")};
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
