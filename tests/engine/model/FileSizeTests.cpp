#include "engine/model/FileSize.h"

#include <gtest/gtest.h>

#include <QLocale>
#include <clocale>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::FileSize;

namespace {

// Halves go to the even digit, also where the nearest number that the machine holds lies below the half (1015) or
// above it (1145).
const QString sizes = QStringLiteral(
    "0 1 999 1000 1005 1015 1145 1499 1501 1995 2500 4500 10010 99985 99995 99999 100060 100250 100350 999499 999949 "
    "999950 999999 1000000 1015000 123456789 999999999 1000000000 1240000000 999999999999 1000000000000 "
    "5000000000000000 999900000000000000 1000000000000000000 18446744073709551615");

QString texts(QString (*format)(quint64)) {
    QStringList texts;
    for (const QString& size : sizes.split(QLatin1Char(' '))) {
        texts.append(format(size.toULongLong()));
    }
    return texts.join(QLatin1Char('|'));
}

}  // namespace

TEST(FileSize, IsWholeInTheShortFormAndHasAtMostTwoDecimalsInTheLongOneWhateverTheLocale) {
    for (const char* locale : {"C", "de_DE", "ar_EG"}) {
        SCOPED_TRACE(locale);
        // Where the system does not have the locale, the program's own still changes.
        std::setlocale(LC_ALL, (std::string(locale) + ".UTF-8").c_str());
        QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
        EXPECT_EQ(
            texts(&FileSize::formatMemoryStringDot0),
            QStringLiteral("0 B|1 B|999 B|1 KB|1 KB|1 KB|1 KB|1 KB|2 KB|2 KB|2 KB|4 KB|10 KB|100 KB|100 KB|100 KB|"
                           "100 KB|100 KB|100 KB|999 KB|1000 KB|1000 KB|1000 KB|1 MB|1 MB|123 MB|1000 MB|1 GB|1 GB|"
                           "1000 GB|1 TB|5000 TB|999900 TB|1000000 TB|18446744 TB"));
        EXPECT_EQ(
            texts(&FileSize::formatMemoryStringDot1),
            QStringLiteral("0 B|1 B|999 B|1 KB|1 KB|1.02 KB|1.14 KB|1.5 KB|1.5 KB|2 KB|2.5 KB|4.5 KB|10.01 KB|"
                           "99.98 KB|100 KB|100 KB|100.1 KB|100.2 KB|100.4 KB|999.5 KB|999.9 KB|1000 KB|1000 KB|"
                           "1 MB|1.02 MB|123.5 MB|1000 MB|1 GB|1.24 GB|1000 GB|1 TB|5 PB|999.9 PB|1 PB|18.45 PB"));
    }
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(QLocale::c());
}

TEST(FileSize, NamesAPathByItsLastComponent) {
    EXPECT_EQ(FileSize::getDisplayNameAtPath("/home/anna/note\n.txt"), QStringLiteral(u"note\ufffd.txt"));
}

}  // namespace brimvault::tests
