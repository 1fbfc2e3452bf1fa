#include "files/trees/FolderWalk.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "files/walk/TreeWalk.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::Descend;
using files::HiddenEntries;

namespace {

Descend answerFor(const fs::path& folder) {
    return folder.filename().native().find('3') == std::string::npos ? Descend::yes : Descend::no;
}

// The folders that are to be visited, by other means.
std::vector<fs::path> foldersBelow(const fs::path& folder, HiddenEntries hidden) {
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const bool wanted = hidden == HiddenEntries::include || !entry.path().filename().native().starts_with('.');
        if (wanted && fs::is_directory(entry.symlink_status())) {
            folders.push_back(entry.path());
            if (answerFor(entry.path()) == Descend::yes) {
                const auto inside = foldersBelow(entry.path(), hidden);
                folders.insert(folders.end(), inside.begin(), inside.end());
            }
        }
    }
    return folders;
}

}  // namespace

TEST(FolderWalk, CallsOnceForEveryFolderBeforeThoseInsideItAndGoesInAsAnswered) {
    std::mt19937 random(1906);
    std::size_t visited = 0;
    for (int round = 0; round < 30; ++round) {
        const TemporaryFolder folder;
        const auto top = folder / "top";
        growRandomly(random, top, 3);
        makeLoops(top / "n0/loops");
        makeDeep(top / "n0", 3 * files::TreeWalk::maxOpenFolders);
        fs::create_directories(top / "n0/inner/inner/beside");
        for (const auto hidden : {HiddenEntries::skip, HiddenEntries::include}) {
            std::vector<fs::path> folders;
            EXPECT_TRUE(files::forEachFolder(top, hidden, {}, [&](const files::FoundFolder& found) {
                const auto parent = found.path.parent_path();
                EXPECT_TRUE(parent == top || std::find(folders.begin(), folders.end(), parent) != folders.end());
                EXPECT_EQ(found.parent.status()->identity, files::statusOf(parent)->identity);
                EXPECT_EQ(found.path.filename(), found.name);
                folders.push_back(found.path);
                return answerFor(found.path);
            }));
            EXPECT_THAT(folders, testing::UnorderedElementsAreArray(foldersBelow(top, hidden)));
            visited += folders.size();
        }
    }
    EXPECT_GT(visited, 2000U);
}

TEST(FolderWalk, FindsNothingInWhatIsNoFolderAndNothingMoreOnceItIsStopped) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    fs::create_directories(folder / "real/inner/innermost");
    fs::create_directory_symlink("real", folder / "link");
    int calls = 0;
    const auto walk = [&](const char* name, std::stop_source stop, int callsToGo) {
        return files::forEachFolder(folder / name, HiddenEntries::include, stop.get_token(), [&](const auto&) {
            if (++calls == callsToGo) {
                stop.request_stop();
            }
            return Descend::yes;
        });
    };
    for (const char* name : {"file", "link", "missing", "missing/missing"}) {
        EXPECT_TRUE(walk(name, std::stop_source(), 0));
    }
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(walk("real", std::stop_source(), 1));
    EXPECT_EQ(calls, 1);
}

}  // namespace brimvault::tests
