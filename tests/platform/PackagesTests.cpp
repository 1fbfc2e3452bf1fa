#include "platform/Packages.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "support/PropertyLists.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::Packages;
namespace fs = std::filesystem;

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
    const std::tuple<std::size_t, std::size_t, char, bool> marks[] = {
        {32, 8, '\x5f', false},  // every flag but that one
        {32, 9, '\x20', false},
        {31, 8, '\x20', false},
        {32, 8, '\x64', true}};  // with other flags
    for (const auto& [length, place, bits, isPackages] : marks) {
        std::string information(length, '\0');
        information[place] = bits;
        if (::lsetxattr(bundle.c_str(), "user.com.apple.FinderInfo", information.data(), length, 0) != 0) {
            GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
        }
        EXPECT_EQ(Packages::isPackage(bundle), isPackages) << length << " bytes, " << place;
    }
    fs::create_directory_symlink("Some", folder / "link");
    EXPECT_FALSE(Packages::isPackage(folder / "link"));
}

TEST(Packages, TellTheirIdentifierFromThreePlaces) {
    const TemporaryFolder folder;
    const auto bundle = folder / "Some.app";
    EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt);
    for (const char* place : {"Resources/Info.plist", "Info.plist", "Contents/Info.plist"}) {
        writeFile(bundle / place,
                  xmlDictionary("<key>CFBundleIdentifier</key><string>from " + std::string(place) + "</string>"));
        EXPECT_EQ(Packages::bundleIdentifier(bundle), "from " + std::string(place)) << "before those above";
    }
    const auto list = bundle / "Contents/Info.plist";
    writeFile(list, "damaged");
    EXPECT_EQ(Packages::bundleIdentifier(bundle), "from Info.plist");
    writeFile(list, binaryDictionary("CFBundleIdentifier", {"\x5a"
                                                            "com.vendor"}));
    EXPECT_EQ(Packages::bundleIdentifier(bundle), "com.vendor");
    writeFile(list, xmlDictionary("<key>cfbundleidentifier</key><string>com.vendor</string>"));
    EXPECT_EQ(Packages::bundleIdentifier(bundle), std::nullopt);
}

}  // namespace brimvault::tests
