#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "platform/ApplicationIcon.h"
#include "platform/Packages.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;
using namespace std::string_literals;

using platform::ApplicationIcon;
using platform::Packages;
namespace fs = std::filesystem;

namespace {

std::string list(const std::string& key, const std::string& text) {
    return "<plist><dict><key>" + key + "</key><string>" + text + "</string></dict></plist>";
}

class Bundles : public testing::Test {
protected:
    Bundles() { fs::create_directories(resources_); }

    void name(const std::string& icon) const {
        writeFile(bundle_ / "Contents/Info.plist", list("CFBundleIconFile", icon));
    }
    [[nodiscard]] std::string icon() const { return ApplicationIcon::read(bundle_).value_or("none"); }

    TemporaryFolder folder_;
    fs::path bundle_ = folder_ / "Some.app";
    fs::path resources_ = bundle_ / "Contents/Resources";
};

}  // namespace

TEST_F(Bundles, ArePackagesByTheirExtensionInAnyCase) {
    for (const char* name :
         {"Some.app", "Some.APP", "S.bundle", "S.Plugin", "S.prefPane", "S.mpkg", "a.b.app", "S.nib"}) {
        EXPECT_TRUE(Packages::isPackage(folder_ / name)) << name;
    }
    for (const char* name : {"Some", "app", ".app", "Some.app.bak", "Some.", "Some.ap", "Some.app ", "Some.framework",
                             "de.lproj", "Utilities", "S.\xff"}) {
        EXPECT_FALSE(Packages::isPackage(folder_ / name)) << name;
    }
}

TEST_F(Bundles, ArePackagesByTheFileBrowsersMark) {
    const auto bundle = folder_ / "Some";
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
    fs::create_directory_symlink("Some", folder_ / "link");
    EXPECT_FALSE(Packages::isPackage(folder_ / "link"));
}

TEST_F(Bundles, TellTheirIdentifierFromThreePlaces) {
    EXPECT_EQ(Packages::bundleIdentifier(bundle_), std::nullopt);
    for (const char* place : {"Resources/Info.plist", "Info.plist", "Contents/Info.plist"}) {
        writeFile(bundle_ / place, list("CFBundleIdentifier", "from " + std::string(place)));
        EXPECT_EQ(Packages::bundleIdentifier(bundle_), "from " + std::string(place)) << "before those above";
    }
    writeFile(bundle_ / "Contents/Info.plist", "damaged");
    EXPECT_EQ(Packages::bundleIdentifier(bundle_), "from Info.plist");
    writeFile(bundle_ / "Contents/Info.plist", list("cfbundleidentifier", "com.vendor"));
    EXPECT_EQ(Packages::bundleIdentifier(bundle_), std::nullopt);
}

TEST_F(Bundles, HaveTheIconThatTheirListNamesWithOrWithoutAnExtension) {
    writeFile(resources_ / "Some.icns", "pictures");
    writeFile(resources_ / "Other.png", "another");
    EXPECT_EQ(icon(), "none") << "no list";
    for (const auto& [named, expected] :
         {std::pair("Some.icns", "pictures"), {"Some", "pictures"}, {"Other", "another"}, {"Missing", "none"}}) {
        name(named);
        EXPECT_EQ(icon(), expected) << named;
    }
    writeFile(bundle_ / "Contents/Info.plist", "damaged");
    EXPECT_EQ(icon(), "none");
}

TEST_F(Bundles, OfTheFlatKindHaveTheirIconBesideTheirList) {
    for (const std::string key : {"NSIcon", "ApplicationIcon"}) {
        for (const char* place : {"Resources", "."}) {
            const auto flat = folder_ / (key + place + ".app");
            writeFile(flat / place / "Info-gnustep.plist",
                      "{ NSTypes = ({ NSIcon = \"type\"; }); " + key + " = own; }");
            writeFile(flat / place / "type", "the picture of a type");
            writeFile(flat / place / "own.tiff", "its own picture");
            EXPECT_EQ(ApplicationIcon::read(flat), "its own picture") << key << place;
        }
    }
}

TEST_F(Bundles, HaveNoIconOutsideTheirResources) {
    writeFile(folder_ / "secret", "secret");
    writeFile(bundle_ / "Contents/secret", "secret");
    writeFile(resources_ / "inner/secret", "secret");
    fs::create_symlink("../../../secret", resources_ / "link");
    fs::create_symlink("real", resources_ / "neighbour");
    writeFile(resources_ / "real", "picture");
    for (const std::string& named :
         {"../secret"s, "../../../secret"s, (folder_ / "secret").native(), "inner/secret"s, "./real"s, "link"s,
          "neighbour"s, "inner"s, ".."s, "."s, ""s, std::string(5000, 'x')}) {
        name(named);
        EXPECT_EQ(icon(), "none") << named;
    }
    name("real");
    EXPECT_EQ(icon(), "picture");
}

TEST_F(Bundles, HaveNoIconBehindLinkedFolders) {
    name("real");
    fs::remove(resources_);
    writeFile(folder_ / "elsewhere/real", "secret");
    fs::create_directory_symlink(folder_ / "elsewhere", resources_);
    EXPECT_EQ(icon(), "none");
    fs::rename(bundle_ / "Contents", folder_ / "Contents");
    fs::remove(folder_ / "Contents/Resources");
    writeFile(folder_ / "Contents/Resources/real", "secret");
    fs::create_directory_symlink("../Contents", bundle_ / "Contents");
    EXPECT_EQ(icon(), "none");
    fs::create_directory_symlink("Some.app", folder_ / "Link.app");
    EXPECT_EQ(ApplicationIcon::read(folder_ / "Link.app"), std::nullopt);
}

TEST_F(Bundles, HaveIconsThatArePlainFilesOfABoundedLength) {
    name("icon");
    const auto file = resources_ / "icon";
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);  // not waited for
    EXPECT_EQ(icon(), "none");
    fs::remove(file);
    writeSparseFile(file, ApplicationIcon::maxBytes + 1);
    EXPECT_EQ(icon(), "none");
    writeSparseFile(file, ApplicationIcon::maxBytes);
    EXPECT_EQ(icon().size(), ApplicationIcon::maxBytes);
    writeFile(bundle_ / "Contents/Info.plist", list("CFBundleIconFile", "icon") + std::string(1024UL * 1024, ' '));
    EXPECT_EQ(icon(), "none") << "a list without end";
}

}  // namespace brimvault::tests
