#include "platform/formats/PropertyList.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QByteArray>

#include "platform/FinderPreferences.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::FinderPreferences;
using platform::PropertyList;

namespace {

std::string inXml(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<plist version=\"1.0\"><dict>" +
           inside + "</dict></plist>\n";
}

// {"AppleShowAllFiles": true, "a": [1], "n": 0, "r": 0.5, "t": "YES"}
std::string inBinary() {
    const auto bytes = QByteArray::fromHex(
        "62706c6973743030d501020304050607090a0b5f10114170706c6553686f77416c6c46696c657351"
        "61516e5172517409a10810011000233fe000000000000053594553081327292b2d2f303234363f00"
        "00000000000101000000000000000c00000000000000000000000000000043");
    return bytes.toStdString();
}

std::string bigEndian(std::uint64_t value, int width) {
    std::string bytes;
    for (int byte = width - 1; byte >= 0; --byte) {
        bytes.push_back(static_cast<char>(value >> (8 * byte) & 0xFFU));
    }
    return bytes;
}

// A binary list of these objects, the first is the root; references have two bytes.
std::string listOf(const std::vector<std::string>& objects) {
    std::string file = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(file.size(), 4);
        file += object;
    }
    return file + offsets + std::string(6, '\0') + "\x04\x02" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(file.size(), 8);
}

// A dictionary whose only value is an array with many references to one string.
std::string repeated(int times, const std::string& text) {
    std::string array = "\xaf\x11" + bigEndian(static_cast<std::uint64_t>(times), 2);
    for (int reference = 0; reference < times; ++reference) {
        array += bigEndian(3, 2);
    }
    return listOf(
        {"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), "\x51k", array, "\x5f\x12" + bigEndian(text.size(), 4) + text});
}

// A dictionary whose only value is the first of a chain of arrays, each with so many references to the next.
std::string chainOfArrays(int length, int references) {
    std::vector<std::string> objects = {"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), "\x51k"};
    for (int array = 0; array < length; ++array) {
        objects.push_back(static_cast<char>(0xA0 + references) + std::string());
        for (int reference = 0; reference < references; ++reference) {
            objects.back() += bigEndian(objects.size(), 2);
        }
    }
    objects.emplace_back("\x09");
    return listOf(objects);
}

class PropertyLists : public testing::Test {
protected:
    [[nodiscard]] std::optional<PropertyList> read(const std::string& contents) const {
        writeFile(folder_ / "list", contents);
        return PropertyList::read(folder_ / "list");
    }

    TemporaryFolder folder_;
};

}  // namespace

TEST_F(PropertyLists, AnswersBooleansNumbersAndTexts) {
    const std::pair<const char*, std::optional<bool>> values[] = {
        {"<true/>", true},
        {"<false/>", false},
        {"<integer>1</integer>", true},
        {"<integer>0</integer>", false},
        {"<integer>-1</integer>", true},
        {"<real>0.5</real>", true},
        {"<real>0</real>", false},
        {"<string>YES</string>", true},
        {"<string>yes</string>", true},
        {"<string>true</string>", true},
        {"<string> 1</string>", true},
        {"<string>-007</string>", true},
        {"<string>NO</string>", false},
        {"<string>0</string>", false},
        {"<string>-0</string>", false},
        {"<string>on</string>", false},
        {"<string></string>", false},
        {"<array><true/></array>", std::nullopt},
        {"<dict><key>key</key><true/></dict>", std::nullopt},
        {"<date>2024-05-01T12:00:00Z</date>", std::nullopt},
    };
    for (const auto& [value, answer] : values) {
        const auto list = read(inXml(std::string("<key>other</key><true/><key>key</key>") + value));
        ASSERT_TRUE(list) << value;
        EXPECT_EQ(list->boolean("key"), answer) << value;
        EXPECT_EQ(list->boolean("missing"), std::nullopt);
    }
}

TEST_F(PropertyLists, ReadsTheBinaryForm) {
    const auto list = read(inBinary());
    ASSERT_TRUE(list);
    EXPECT_EQ(list->boolean("AppleShowAllFiles"), true);
    EXPECT_EQ(list->boolean("n"), false);
    EXPECT_EQ(list->boolean("r"), true);
    EXPECT_EQ(list->boolean("t"), true);
    EXPECT_EQ(list->boolean("a"), std::nullopt);
}

TEST_F(PropertyLists, ReadsTheTextsOfTheOldestForm) {
    const auto list = read(R"(// remark
/* another; = */ {
    Plain = some_text/1.0-a;
    "Quoted key" = "a \"b\" \\ \U00F6 \101 ; }";
    Inner = { NSIcon = inner; Array = ( "(", { x = "}"; }, a//b ); }; Data = <0fbd 77>;
    NSIcon="own.tiff";
    yes = YES
})");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->text("Plain"), "some_text/1.0-a");
    EXPECT_EQ(list->text("Quoted key"), "a \"b\" \\ ö A ; }");
    EXPECT_EQ(list->text("NSIcon"), "own.tiff");
    EXPECT_EQ(list->boolean("yes"), true);
    for (const char* other : {"Inner", "Array", "Data", "x", "remark"}) {
        EXPECT_EQ(list->text(other), std::nullopt) << other;
    }
    std::string many = "{";
    for (int key = 0; key <= 1000; ++key) {
        many += "k" + std::to_string(key) + "=v;";
    }
    for (const std::string& wrong :
         {std::string("{"), std::string("{ a = b; } c"), std::string("{ a b; }"), std::string("{ a = ; }"),
          std::string("{ a = \"b; }"), std::string("{ a = (b; }"), std::string("{ a = b c = d; }"),
          std::string("{ a = /* b; }"), std::string("( a )"), many + "}", "{a=" + std::string(900'000, '(')}) {
        EXPECT_FALSE(read(wrong)) << wrong.substr(0, 40);
    }
    EXPECT_TRUE(read("{a=" + std::string(400'000, '(') + std::string(400'000, ')') + "}")) << "depth costs nothing";
}

TEST_F(PropertyLists, SurvivesEveryDamage) {
    for (const auto& whole : {inBinary(), inXml("<key>AppleShowAllFiles</key><true/><key>a</key><string>x</string>")}) {
        for (std::size_t length = 0; length + 9 < whole.size(); ++length) {
            EXPECT_FALSE(read(whole.substr(0, length))) << length;
        }
        for (std::size_t place = 0; place < whole.size(); ++place) {
            for (const char letter : {'\0', '\x01', '\x7f', '\x80', '\xff', '<'}) {
                auto damaged = whole;
                damaged[place] = letter;
                const auto list = read(damaged);
                (void)(list && list->boolean("AppleShowAllFiles"));
            }
        }
    }
    EXPECT_FALSE(read("garbage"));
    EXPECT_FALSE(read("bplist00"));
    EXPECT_FALSE(read("<plist><array><dict/></array></plist>"));
}

TEST_F(PropertyLists, ReadsATextUpToAZeroByte) {
    const std::string zero(1, '\0');
    const std::string wide("\x66\0y\0e\0s\0\0\0n\0o", 13);
    for (const auto& text : {"\x56yes" + zero + "no", wide}) {
        const auto list = read(listOf({"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), "\x51k", text}));
        ASSERT_TRUE(list);
        EXPECT_EQ(list->text("k"), "yes");
        EXPECT_EQ(list->boolean("k"), true);
    }
    const auto key = read(listOf({"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), "\x53k" + zero + "x", "\x09"}));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->boolean("k"), true);
}

TEST_F(PropertyLists, TakesNoFileThatNestsOrRepeatsWithoutEnd) {
    EXPECT_TRUE(read(chainOfArrays(100, 1)));
    EXPECT_TRUE(read(chainOfArrays(10, 2)));
    EXPECT_FALSE(read(chainOfArrays(60'000, 1)));
    EXPECT_FALSE(read(chainOfArrays(40, 2)));
    EXPECT_TRUE(read(repeated(10, std::string(10'000, 'x'))));
    EXPECT_FALSE(read(repeated(60'000, std::string(500'000, 'x'))));
    std::string loop = chainOfArrays(3, 1);
    loop[loop.find('\xa1') + 2] = '\x02';  // the first array refers to itself
    EXPECT_FALSE(read(loop));
    std::string deep;
    for (int level = 0; level < 60'000; ++level) {
        deep += "<array>";
    }
    EXPECT_FALSE(read(inXml("<key>k</key>" + deep)));
}

TEST_F(PropertyLists, TakesNoFileThatIsMissingNoPlainFileOrTooLarge) {
    EXPECT_FALSE(PropertyList::read(folder_ / "missing"));
    EXPECT_FALSE(PropertyList::read(folder_.path()));
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_FALSE(PropertyList::read(folder_ / "pipe"));
    EXPECT_FALSE(read(""));
    constexpr std::size_t largest = 1024UL * 1024;
    const auto list = inXml("<key>key</key><true/>");
    EXPECT_TRUE(read(list + std::string(largest - list.size(), ' ')));
    EXPECT_FALSE(read(list + std::string(largest + 1 - list.size(), ' ')));
}

TEST(FinderPreferences, AreLookedForUntilTheyAreFoundAndReadAnew) {
    const TemporaryFolder folder;
    const auto file = folder / "Library/Preferences/com.apple.finder.plist";
    FinderPreferences finder;
    {
        const SubstituteHome home(folder.path());
        EXPECT_EQ(finder.GetFinderPrefPath(), std::nullopt);
        EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
        writeFile(file, inBinary());
        EXPECT_TRUE(finder.isHiddenFilesVisibleInFinder());
        EXPECT_EQ(finder.GetFinderPrefPath(), file);
        writeFile(file, inXml("<key>AppleShowAllFiles</key><false/>"));
        EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
        writeFile(file, "damaged");
        EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
    }
    const TemporaryFolder other;
    const SubstituteHome home(other.path());
    EXPECT_EQ(finder.GetFinderPrefPath(), file);
}

}  // namespace brimvault::tests
