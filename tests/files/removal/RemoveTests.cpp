#include "files/removal/Remove.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "files/trees/Measure.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/MeddlingGuard.h"

namespace brimvault::tests {

using files::RemovalEnd;

namespace {

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

bool isKeptWith(const files::RemovalOutcome& outcome, int code, const fs::path& path) {
    return outcome.end == RemovalEnd::kept && outcome.failure && outcome.failure->code == code &&
           outcome.failure->path == path;
}

}  // namespace

TEST(Remove, TakesAwayWhatHasTheNameAndNothingThatItLinksTo) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    writeFile(folder / "folder/inner/file", "");
    makeLinks(folder / "links", folder / "outside");
    makeLoops(folder / "loops");
    const auto outside = fingerprint(folder / "outside");
    fs::create_symlink("outside", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* name : {"file", "link", "folder", "pipe", "links", "loops", "missing", "missing/inside"}) {
        const auto outcome = files::remove(folder / name);
        EXPECT_EQ(outcome.end, RemovalEnd::gone) << name;
        EXPECT_FALSE(outcome.failure) << name;
        EXPECT_FALSE(isThere(folder / name)) << name;
    }
    EXPECT_EQ(fingerprint(folder / "outside"), outside);
}

TEST(Remove, RefusesPathsThatNameNoPlainItemOrLeadThroughALink) {
    const TemporaryFolder folder;
    writeFile(folder / "inner/more/file", "");
    fs::create_directory_symlink("inner", folder / "link");
    const auto before = fingerprint(folder.path());
    const auto inner = folder / "inner";
    for (const fs::path& path : {fs::path(), fs::path("/"), fs::path("relative"), fs::path("."), fs::path(".."),
                                 inner / "..", inner / ".", inner / "../inner/more", inner / "", folder / "./inner",
                                 fs::path(inner.native() + '\0'), fs::path(inner.native() + '\0' + "/more")}) {
        EXPECT_TRUE(isKeptWith(files::remove(path), EINVAL, path)) << path;
    }
    for (const auto& path : {folder / "link/more", folder / "link/more/file"}) {
        EXPECT_TRUE(isKeptWith(files::remove(path), ENOTDIR, path)) << path;
    }
    EXPECT_EQ(fingerprint(folder.path()), before);
}

TEST(Remove, TakesOddNamesAsTheyAre) {
    const TemporaryFolder folder;
    makeOddNames(folder / "tree");
    for (const auto& name : oddNames()) {
        const auto item = folder / "tree/files" / name;
        EXPECT_EQ(files::remove(item).end, RemovalEnd::gone) << item;
        EXPECT_FALSE(isThere(item)) << item;
    }
    EXPECT_TRUE(fs::is_empty(folder / "tree/files"));
    EXPECT_EQ(files::remove(folder / "tree").end, RemovalEnd::gone);
    EXPECT_FALSE(isThere(folder / "tree"));
}

TEST(Remove, NeedsFewDescriptorsAndLittleStackForADeepTreeAsMeasuringDoes) {
    const TemporaryFolder folder(folderInMemory());
    makeDeep(folder / "deep", 10'000);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        limitDescriptors(16);
        if (const auto size = files::measureItem(folder / "deep"); size != 3) {
            return "measured " + std::to_string(size);
        }
        const auto outcome = files::remove(folder / "deep");
        return outcome.end == RemovalEnd::gone ? "" : outcome.failure ? outcome.failure->text() : "cancelled";
    });
    EXPECT_FALSE(isThere(folder / "deep"));
}

// Of folders, PermissionMatrix and OwnFolders know all that there is.
TEST(Remove, NamesAFileThatItsFolderKeeps) {
    const TemporaryFolder folder;
    makePermissions(folder / "tree");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto item = folder / "tree/closed/kept";
        return isKeptWith(files::remove(item), EACCES, item) ? "" : item.native();
    });
    EXPECT_TRUE(isThere(folder / "tree/closed/kept"));
}

TEST(Remove, TouchesNothingWhenItIsStoppedAndCallsGoneWhatOthersTookMeanwhile) {
    const TemporaryFolder folder;
    writeFile(folder / "tree/inner/file", "");
    writeFile(folder / "file", "");
    fs::create_directory(folder / "empty");
    const auto before = fingerprint(folder.path());
    std::stop_source stop;
    MeddlingGuard stopper(nullptr, [&](const auto&) { stop.request_stop(); });
    for (const char* name : {"tree", "tree", "file", "empty"}) {  // the first on its way, the others before
        auto* guard = stop.stop_requested() ? nullptr : &stopper;
        const auto outcome = files::remove(folder / name, stop.get_token(), guard);
        EXPECT_TRUE(outcome.end == RemovalEnd::cancelled && !outcome.failure) << name;
    }
    EXPECT_EQ(fingerprint(folder.path()), before);
    MeddlingGuard other(nullptr, [&](const auto&) { fs::remove(folder / "file"); });
    EXPECT_EQ(files::remove(folder / "file", {}, &other).end, RemovalEnd::gone);
}

}  // namespace brimvault::tests
