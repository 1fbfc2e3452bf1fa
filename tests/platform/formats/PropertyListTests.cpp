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
using namespace std::string_literals;

using platform::PropertyList;

namespace {

// A property list in XML: a dictionary with these elements in it.
std::string xmlDictionary(const std::string& elements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + elements + "</dict></plist>\n";
}

std::string bigEndian(std::uint64_t value, int width) {
    std::string bytes;
    for (int byte = width - 1; byte >= 0; --byte) {
        bytes.push_back(static_cast<char>(value >> (8 * byte) & 0xFFU));
    }
    return bytes;
}

// A binary property list: a dictionary whose only value is the first of these objects, which has number 2. References
// have two bytes.
std::string binaryDictionary(const std::string& key, std::vector<std::string> objects) {
    const std::string length =
        key.size() < 15 ? std::string(1, static_cast<char>(0x50 + key.size())) : "\x5f\x10" + bigEndian(key.size(), 1);
    objects.insert(objects.begin(), {"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), length + key});
    std::string file = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(file.size(), 4);
        file += object;
    }
    return file + offsets + std::string(6, '\0') + "\x04\x02" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(file.size(), 8);
}

// {"AppleShowAllFiles": true, "a": [1], "n": 0, "r": 0.5, "t": "YES"}
std::string inBinary() {
    const auto bytes = QByteArray::fromHex(
        "62706c6973743030d501020304050607090a0b5f10114170706c6553686f77416c6c46696c657351"
        "61516e5172517409a10810011000233fe000000000000053594553081327292b2d2f303234363f00"
        "00000000000101000000000000000c00000000000000000000000000000043");
    return bytes.toStdString();
}

std::string repeated(int times, const std::string& text) {
    return QByteArray::fromStdString(text).repeated(times).toStdString();
}

// An array with so many references to one string.
std::string referencesTo(const std::string& text, int times) {
    return binaryDictionary(
        "k", {"\xaf\x11" + bigEndian(static_cast<std::uint64_t>(times), 2) + repeated(times, bigEndian(3, 2)),
              "\x5f\x12" + bigEndian(text.size(), 4) + text});
}

// The first of a chain of arrays, each with so many references to the next.
std::string chainOfArrays(std::size_t length, int references) {
    std::vector<std::string> objects;
    while (objects.size() < length) {
        objects.push_back(static_cast<char>(0xA0 + references) +
                          repeated(references, bigEndian(objects.size() + 3, 2)));
    }
    objects.emplace_back("\x09");
    return binaryDictionary("k", objects);
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
    const std::pair<std::optional<bool>, std::vector<std::string>> answers[] = {
        {true,
         {"<true/>", "<integer>1</integer>", "<integer>-1</integer>", "<real>0.5</real>", "<string>YES</string>",
          "<string>yes</string>", "<string>true</string>", "<string> 1</string>", "<string>-007</string>"}},
        {false,
         {"<false/>", "<integer>0</integer>", "<real>0</real>", "<string>NO</string>", "<string>0</string>",
          "<string>-0</string>", "<string>on</string>", "<string></string>"}},
        {std::nullopt,
         {"<array><string>1</string></array>", "<dict><key>key</key><true/></dict>",
          "<date>2024-05-01T12:00:00Z</date>"}},
    };
    for (const auto& [answer, values] : answers) {
        for (const auto& value : values) {
            const auto list = read(xmlDictionary("<key>other</key><true/><key>key</key>" + value));
            ASSERT_TRUE(list) << value;
            EXPECT_EQ(list->boolean("key"), answer) << value;
            EXPECT_EQ(list->text("key").has_value(), value.starts_with("<string>")) << value;
            EXPECT_EQ(list->boolean("missing"), std::nullopt);
        }
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
    for (const std::string& wrong :
         {"{"s, "{ a = b; } c"s, "{ a b; }"s, "{ a = ; }"s, "{ a = \"b; }"s, "{ a = (b; }"s, "{ a = b c = d; }"s,
          "{ a = /* b; }"s, "( a )"s, "{" + repeated(1001, "k=v;") + "}", "{a=" + std::string(900'000, '(')}) {
        EXPECT_FALSE(read(wrong)) << wrong.substr(0, 40);
    }
    EXPECT_TRUE(read("{a=" + std::string(400'000, '(') + std::string(400'000, ')') + "}")) << "depth costs nothing";
}

TEST_F(PropertyLists, SurvivesEveryDamage) {
    for (const auto& whole :
         {inBinary(), xmlDictionary("<key>AppleShowAllFiles</key><true/><key>a</key><string>x</string>")}) {
        for (std::size_t place = 0; place < whole.size(); ++place) {
            EXPECT_TRUE(place + 9 >= whole.size() || !read(whole.substr(0, place))) << "the first " << place;
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
        const auto list = read(binaryDictionary("k", {text}));
        ASSERT_TRUE(list);
        EXPECT_EQ(list->text("k"), "yes");
        EXPECT_EQ(list->boolean("k"), true);
    }
    const auto key = read(binaryDictionary("k" + zero + "x", {"\x09"}));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->boolean("k"), true);
}

TEST_F(PropertyLists, TakesNoFileThatNestsOrRepeatsWithoutEnd) {
    EXPECT_TRUE(read(chainOfArrays(199, 1)));
    EXPECT_FALSE(read(chainOfArrays(200, 1))) << "too deep";
    EXPECT_TRUE(read(chainOfArrays(15, 2)));
    EXPECT_FALSE(read(chainOfArrays(16, 2))) << "twice as many objects at each level";
    EXPECT_TRUE(read(referencesTo(std::string(1'000'000, 'x'), 8)));
    EXPECT_FALSE(read(referencesTo(std::string(1'000'000, 'x'), 9))) << "copied so often that memory runs out";
    std::string loop = chainOfArrays(3, 1);
    loop[loop.find('\xa1') + 2] = '\x02';  // the first array refers to itself
    EXPECT_FALSE(read(loop));
    EXPECT_TRUE(read(xmlDictionary("<key>k</key><array>" + repeated(39'000, "<true/>") + "</array>")));
    EXPECT_FALSE(read(xmlDictionary("<key>k</key><array>" + repeated(40'000, "<true/>") + "</array>")));
}

TEST_F(PropertyLists, TakesNoFileThatIsMissingNoPlainFileOrTooLarge) {
    EXPECT_FALSE(PropertyList::read(folder_ / "missing"));
    EXPECT_FALSE(PropertyList::read(folder_.path()));
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_FALSE(PropertyList::read(folder_ / "pipe"));
    EXPECT_FALSE(read(""));
    constexpr std::size_t largest = 1024UL * 1024;
    const auto list = xmlDictionary("<key>key</key><true/>");
    EXPECT_TRUE(read(list + std::string(largest - list.size(), ' ')));
    EXPECT_FALSE(read(list + std::string(largest + 1 - list.size(), ' ')));
}

TEST(FinderPreferences, AreLookedForUntilTheyAreFoundAndReadAnew) {
    const TemporaryFolder folder;
    const auto file = folder / "Library/Preferences/com.apple.finder.plist";
    platform::FinderPreferences finder;
    const SubstituteHome home(folder.path());
    EXPECT_EQ(finder.GetFinderPrefPath(), std::nullopt);
    EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
    writeFile(file, inBinary());
    EXPECT_TRUE(finder.isHiddenFilesVisibleInFinder());
    writeFile(file, xmlDictionary("<key>AppleShowAllFiles</key><false/>"));
    EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
    writeFile(file, "damaged");
    EXPECT_FALSE(finder.isHiddenFilesVisibleInFinder());
    const SubstituteHome other("/");
    EXPECT_EQ(finder.GetFinderPrefPath(), file);
}

}  // namespace brimvault::tests
