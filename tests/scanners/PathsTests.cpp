#include <gtest/gtest.h>

#include "scanners/PathsGenerator.h"
#include "scanners/SystemPathsGenerator.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using scanners::PathsGenerator;
using scanners::SystemPathsGenerator;

TEST(PathsGenerator, BuildsItsFoldersBelowTheRecordedHome) {
    const TemporaryFolder folder;
    const SubstituteHome home(folder.path(), {{"HOME", "/elsewhere"}});
    const PathsGenerator paths;
    EXPECT_EQ(paths.getHomeDirectory(), folder.path());
    EXPECT_EQ(paths.buildTrashDirectory(), folder / ".Trash");
    EXPECT_EQ(paths.buildUserApplicationsDirectory(), folder / "Applications");
    EXPECT_EQ(paths.buildCacheDirectory(), folder / "Library/Caches");
    EXPECT_EQ(paths.buildDownloadsDirectory(), folder / "Downloads");
}

TEST(PathsGenerator, AgreesWithTheOtherOneAboutAUserWithoutARecord) {
    const platform::SubstituteSystem system(
        {[] { return std::nullopt; }, [] { return "anna"; }, [](const char*) { return std::string(); }});
    EXPECT_EQ(PathsGenerator().getHomeDirectory(), "/Users/anna");
    EXPECT_EQ(SystemPathsGenerator().homeFolder(), "/Users/anna");
}

TEST(SystemPathsGenerator, PutsTheHomeFolderInThePlaceOfItsPrefixOnly) {
    const TemporaryFolder folder;
    const SubstituteHome home(folder.path());
    const SystemPathsGenerator paths;
    EXPECT_EQ(paths.urlForPath("~/Library/Containers"), folder / "Library/Containers");
    EXPECT_EQ(paths.urlForPath("~"), "~");
    EXPECT_EQ(paths.urlForPath("~anna/Library"), "~anna/Library");
    EXPECT_EQ(paths.urlForPath("/a/~/b"), "/a/~/b");
    EXPECT_EQ(paths.urlForPath("relative"), "relative");
    const SubstituteHome root("/");
    EXPECT_EQ(scanners::SystemPathsGenerator().urlForPath("~/Library").native(), "/Library");
}

TEST(SystemPathsGenerator, KeepsTheHomeFolderOfItsMaking) {
    const TemporaryFolder folder;
    const auto paths = [&] {
        const SubstituteHome home(folder.path());
        return SystemPathsGenerator();
    }();
    EXPECT_EQ(paths.homeFolder(), folder.path());
}

}  // namespace brimvault::tests
