#include "platform/Packages.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::Packages;
namespace fs = std::filesystem;

namespace {

std::string inXml(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + inside + "</plist>\n";
}

std::string identifiedAs(const std::string& identifier) {
    return inXml("<dict><key>CFBundleName</key><string>Some</string><key>CFBundleIdentifier</key><string>" +
                 identifier + "</string></dict>");
}

// A binary list of a dictionary with one key and one string: three objects, their offset table, the trailer.
std::string identifiedInBinary(const std::string& identifier) {
    const auto text = [](const std::string& value) {
        return std::string("\x5f\x10") + static_cast<char>(value.size()) + value;
    };
    const std::string key = text("CFBundleIdentifier");
    const std::string objects = "bplist00\xd1\x01\x02" + key + text(identifier);
    const std::string places = {8, 11, static_cast<char>(11 + key.size())};
    const auto number = [](std::size_t value) { return std::string(7, '\0') + static_cast<char>(value); };
    return objects + places + std::string(6, '\0') + "\x01\x01" + number(3) + number(0) + number(objects.size());
}

}  // namespace

TEST(Packages, AreKnownByTheirExtensionInAnyCase) {
    const TemporaryFolder folder;
    for (const char* name :
         {"Some.app", "Some.APP", "S.bundle", "S.Plugin", "S.prefPane", "S.mpkg", "a.b.app", "S.nib"}) {
        EXPECT_TRUE(Packages::isPackage(folder / name)) << name;
    }
    for (const char* name : {"Some", "app", ".app", "Some.app.bak", "Some.", "Some.ap", "Some.app ", "Some.framework",
                             "de.lproj", "Utilities", "S.\xff"}) {
        EXPECT_FALSE(Packages::isPackage(folder / name)) << name;
    }
}

TEST(Packages, AreKnownByTheFileBrowsersMark) {
    const TemporaryFolder folder;
    const auto bundle = folder / "Some";
    fs::create_directory(bundle);
    EXPECT_FALSE(Packages::isPackage(bundle));
    const auto mark = [&](std::size_t length, std::size_t place, char bits) {
        std::string information(length, '\0');
        information[place] = bits;
        return ::lsetxattr(bundle.c_str(), "user.com.apple.FinderInfo", information.data(), length, 0) == 0;
    };
    if (!mark(32, 8, '\x5f')) {  // every flag but that one
        GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
    }
    EXPECT_FALSE(Packages::isPackage(bundle));
    ASSERT_TRUE(mark(32, 9, '\x20'));
    EXPECT_FALSE(Packages::isPackage(bundle));
    ASSERT_TRUE(mark(31, 8, '\x20'));
    EXPECT_FALSE(Packages::isPackage(bundle));
    ASSERT_TRUE(mark(32, 8, '\x64'));  // with other flags
    EXPECT_TRUE(Packages::isPackage(bundle));
    fs::create_directory_symlink("Some", folder / "link");
    EXPECT_FALSE(Packages::isPackage(folder / "link"));
}

TEST(Packages, TellTheirIdentifierFromThreePlaces) {
    const TemporaryFolder folder;
    for (const char* place :
         {"Resources/Info.plist", "Info.plist", "Contents/Info.plist"}) {  // the last one has precedence
        for (const std::string identifier : {"com.vendor.editor", "com.vendor.an-editor-of-some-length"}) {
            writeFile(folder / "Some.app" / place, identifiedAs(identifier + ".xml"));
            EXPECT_EQ(Packages::bundleIdentifier(folder / "Some.app"), identifier + ".xml") << place;
            writeFile(folder / "Some.app" / place, identifiedInBinary(identifier));
            EXPECT_EQ(Packages::bundleIdentifier(folder / "Some.app"), identifier) << place;
        }
    }
}

TEST(Packages, HaveNoIdentifierWhereNoneCanBeRead) {
    const TemporaryFolder folder;
    const auto bundle = folder / "Some.app";
    EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt);
    const auto whole = identifiedAs("com.vendor.editor");
    const auto binary = identifiedInBinary("com.vendor.an-editor");
    const std::string examples[] = {
        "",
        "damaged",
        whole.substr(0, whole.size() / 2),
        binary.substr(0, binary.size() - 1),
        inXml("<dict/>"),
        inXml("<dict><key>CFBundleIdentifier</key><integer>1</integer></dict>"),
        inXml("<dict><key>CFBundleIdentifier</key><true/></dict>"),
        inXml("<dict><key>CFBundleIdentifier</key><array><string>com.vendor.editor</string></array></dict>"),
        inXml("<dict><key>cfbundleidentifier</key><string>com.vendor.editor</string></dict>"),
        inXml("<array><string>CFBundleIdentifier</string></array>"),
        inXml("<string>com.vendor.editor</string>"),
        whole + std::string(1024UL * 1024, ' '),
    };
    for (const auto& contents : examples) {
        writeFile(bundle / "Contents/Info.plist", contents);
        EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt) << contents.substr(0, 200);
    }
    fs::remove(bundle / "Contents/Info.plist");
    fs::create_directory(bundle / "Contents/Info.plist");
    EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt);
    writeFile(bundle / "Contents/Resources/Info.plist", whole);
    EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt);
}

}  // namespace brimvault::tests
