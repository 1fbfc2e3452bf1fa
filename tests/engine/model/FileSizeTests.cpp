#include "engine/model/FileSize.h"

#include <gtest/gtest.h>

#include <QLocale>
#include <clocale>
#include <limits>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::FileSize;

namespace {

struct Example {
    quint64 bytes;
    const char* text;
};

constexpr Example dot0[] = {
    {0, "0 B"},
    {1, "1 B"},
    {999, "999 B"},
    {1000, "1 KB"},
    {1499, "1 KB"},
    {1501, "2 KB"},
    {2500, "2 KB"},  // halves go to the even digit
    {4500, "4 KB"},
    {999'499, "999 KB"},
    {999'999, "1000 KB"},
    {1'000'000, "1 MB"},
    {999'999'999, "1000 MB"},
    {1'000'000'000, "1 GB"},
    {999'999'999'999, "1000 GB"},
    {1'000'000'000'000, "1 TB"},
    {5'000'000'000'000'000, "5000 TB"},
    {std::numeric_limits<quint64>::max(), "18446744 TB"},
};

constexpr Example dot1[] = {
    {0, "0 B"},
    {999, "999 B"},
    {1000, "1 KB"},
    {1500, "1.5 KB"},
    {1005, "1 KB"},     // halves go to the even digit,
    {1015, "1.02 KB"},  // also where the nearest number that the machine holds lies below the half
    {1145, "1.14 KB"},  // or above it
    {1125, "1.12 KB"},
    {1375, "1.38 KB"},
    {1995, "2 KB"},
    {2000, "2 KB"},
    {10'010, "10.01 KB"},
    {99'985, "99.98 KB"},
    {99'995, "100 KB"},
    {99'999, "100 KB"},
    {100'000, "100 KB"},
    {100'060, "100.1 KB"},
    {100'250, "100.2 KB"},
    {100'350, "100.4 KB"},
    {999'949, "999.9 KB"},
    {999'950, "1000 KB"},
    {999'999, "1000 KB"},
    {1'015'000, "1.02 MB"},
    {1'234'567, "1.23 MB"},
    {123'456'789, "123.5 MB"},
    {612'300'000, "612.3 MB"},
    {1'240'000'000, "1.24 GB"},
    {2'000'000'000'000, "2 TB"},
    {1'000'000'000'000'000, "1 PB"},
    {999'900'000'000'000'000, "999.9 PB"},
    {1'000'000'000'000'000'000, "1 PB"},
    {std::numeric_limits<quint64>::max(), "18.45 PB"},
};

// Every example under the locale of the process and of the program.
class SizesInLocale : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        // Where the system does not have the locale, the program's own still changes.
        std::setlocale(LC_ALL, (std::string(GetParam()) + ".UTF-8").c_str());
        QLocale::setDefault(QLocale(QString::fromLatin1(GetParam())));
    }
    void TearDown() override {
        std::setlocale(LC_ALL, "C");
        QLocale::setDefault(QLocale::c());
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(FileSize, SizesInLocale, testing::Values("C", "en_US", "de_DE", "fr_FR", "ar_EG", "hi_IN"),
                         [](const testing::TestParamInfo<const char*>& locale) { return std::string(locale.param); });

TEST_P(SizesInLocale, AreWholeInTheShortForm) {
    for (const auto& example : dot0) {
        EXPECT_EQ(FileSize::formatMemoryStringDot0(example.bytes), QString::fromLatin1(example.text));
    }
}

TEST_P(SizesInLocale, HaveAtMostTwoDecimalsInTheLongForm) {
    for (const auto& example : dot1) {
        EXPECT_EQ(FileSize::formatMemoryStringDot1(example.bytes), QString::fromLatin1(example.text));
    }
}

TEST(FileSize, NamesAPathByItsLastComponent) {
    EXPECT_EQ(FileSize::getDisplayNameAtPath("/home/anna/note\n.txt"), QStringLiteral(u"note\ufffd.txt"));
}

}  // namespace brimvault::tests
