#include "platform/ApplicationIcon.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/PropertyLists.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::ApplicationIcon;
namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

std::string listNaming(const std::string& icon) {
    return xmlDictionary("<key>CFBundleIconFile</key><string>" + icon + "</string>");
}

class ApplicationIcons : public testing::Test {
protected:
    ApplicationIcons() { fs::create_directories(resources_); }

    void name(const std::string& icon) const { writeFile(bundle_ / "Contents/Info.plist", listNaming(icon)); }
    [[nodiscard]] std::string icon() const { return ApplicationIcon::read(bundle_).value_or("none"); }

    TemporaryFolder folder_;
    fs::path bundle_ = folder_ / "Some.app";
    fs::path resources_ = bundle_ / "Contents/Resources";
};

}  // namespace

TEST_F(ApplicationIcons, AreNamedByTheListWithOrWithoutAnExtension) {
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

TEST_F(ApplicationIcons, OfFlatBundlesStandBesideTheirList) {
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

TEST_F(ApplicationIcons, NeverLieOutsideTheResources) {
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

TEST_F(ApplicationIcons, AreNotReachedThroughLinkedFolders) {
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

TEST_F(ApplicationIcons, ArePlainFilesOfABoundedLength) {
    name("icon");
    const auto file = resources_ / "icon";
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);  // not waited for
    EXPECT_EQ(icon(), "none");
    fs::remove(file);
    writeSparseFile(file, ApplicationIcon::maxBytes + 1);
    EXPECT_EQ(icon(), "none");
    writeSparseFile(file, ApplicationIcon::maxBytes);
    EXPECT_EQ(icon().size(), ApplicationIcon::maxBytes);
    writeFile(bundle_ / "Contents/Info.plist", listNaming("icon") + std::string(1024UL * 1024, ' '));
    EXPECT_EQ(icon(), "none") << "a list without end";
}

}  // namespace brimvault::tests
