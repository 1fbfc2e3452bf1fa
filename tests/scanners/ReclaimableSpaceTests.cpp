// What the scans of files tell of what removing their items frees.

#include <gmock/gmock.h>

#include <map>

#include "engine/model/DataMan.h"
#include "files/trees/Measure.h"
#include "support/EventLoop.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"

namespace brimvault::tests {

using namespace trial;
using engine::Section;

namespace {

constexpr std::size_t length = 400'000;

class ReclaimableSpaceInHome : public testing::Test {
protected:
    ReclaimableSpaceInHome() {
        write(".local/share/Trash/files/pages/page");
        write("Downloads/film");
        write("Library/Logs/log");
        write("Library/Containers/com.vendor.x/Data/Library/Logs/log");
        write(".cache/program/data");
        writeSparseFile(home_ / ".cache/sparse", length);
        fs::create_hard_link(home_ / ".cache/program/data", home_ / "Downloads/twin");
        write(".cargo/registry/cache/index/data");
        fs::create_directories(home_ / ".cargo/registry/src/index");
        fs::create_hard_link(home_ / ".cargo/registry/cache/index/data", home_ / ".cargo/registry/src/index/data");
    }
    void write(const char* name) const { writeFile(home_ / name, std::string(length, 'x')); }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    engine::DataMan model_;
};

}  // namespace

TEST_F(ReclaimableSpaceInHome, ItemsOfAllSectionsTellTheirsAndTogetherWhatTheyShare) {
    std::map<std::string, quint64> frees;
    for (const Section section : {Section::caches, Section::downloads, Section::logs, Section::trash}) {
        for (const auto& item : scanSection(section).items) {
            frees[item->hasTargets() ? item->pfname() : item->location().lexically_relative(home_)] = item->frees();
        }
    }
    const auto blocks = [&](const char* name) { return files::statusOf(home_ / name)->allocated; };
    ASSERT_GE(blocks("Downloads/film"), length);
    EXPECT_EQ(frees[".local/share/Trash/files/pages"],
              blocks(".local/share/Trash/files/pages") + blocks(".local/share/Trash/files/pages/page"));
    EXPECT_EQ(frees["Downloads/film"], blocks("Downloads/film"));
    EXPECT_EQ(frees["Downloads/twin"], 0U);
    EXPECT_EQ(frees["Library/Logs/log"], blocks("Library/Logs/log"));
    EXPECT_EQ(frees["Library/Containers/com.vendor.x/Data/Library/Logs"],
              blocks("Library/Logs/log") + blocks("Library/Containers/com.vendor.x/Data/Library/Logs"));
    EXPECT_EQ(frees[".cache/sparse"], 0U);
    EXPECT_EQ(frees[".cache/program"], blocks(".cache/program")) << "its file is in Downloads too";
    EXPECT_EQ(frees["cargo"], blocks(".cargo/registry/cache/index/data") + 2 * blocks(".cargo/registry/src/index"))
        << "a file of two targets counts once";

    const HeardNotifications heard = {engine::notification::sharedSpaceInterfaceUpd};
    engine::NotificationCenter::defaultCenter().post(engine::notification::scanFinished);
    ASSERT_TRUE(runUntil([&] { return !heard.names().isEmpty(); }));
    engine::PerSection<bool> both;
    both[Section::caches] = true;
    const auto alone = model_.freesOfSelection(both);
    both[Section::downloads] = true;
    for (const auto& item : model_.itemsOf(Section::downloads)) {
        item->setPpbChecked(true);
    }
    EXPECT_EQ(model_.freesOfSelection(both) - alone, blocks("Downloads/film") + blocks("Downloads/twin"));
}

}  // namespace brimvault::tests
