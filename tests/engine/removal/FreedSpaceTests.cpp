// What a clean has freed, by the free space of the volumes before and after it.

#include <gtest/gtest.h>

#include "engine/notification/Notifications.h"
#include "engine/removal/FCutter.h"
#include "engine/removal/FreedSpaceMeter.h"
#include "files/NodeStatus.h"
#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/SubstituteHome.h"
#include "support/ToldVolumes.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace engine;
using namespace trial;
namespace fs = std::filesystem;

namespace {

constexpr quint64 mega = 1000UL * 1000;

class FreedSpaceOfVolumes : public testing::Test {
protected:
    /// All that was selected goes; before that 100 MB are free on each volume, and so much after it.
    [[nodiscard]] std::optional<FreedSpace> measured(std::vector<SelectedShare> selected, quint64 first,
                                                     quint64 second = 0, const std::vector<SelectedSet>& sets = {},
                                                     const std::string& stays = {}) {
        volumes_.asked.clear();
        volumes_.setFree(1, 100 * mega);
        volumes_.setFree(2, 100 * mega);
        FreedSpaceMeter meter(volumes_);
        meter.begin(selected, sets, {});
        for (const auto& share : selected) {
            meter.add({.paths = {share.path},
                       .bytes = share.bytes + mega,
                       .device = share.device,
                       .gone = share.path != stays});
        }
        volumes_.setFree(1, first);
        volumes_.setFree(2, second);
        return meter.end({});
    }

    ToldVolumes volumes_;
};

}  // namespace

TEST_F(FreedSpaceOfVolumes, IsNeverLessThanNothingNorMoreThanWasSelectedOnEach) {
    const std::vector<SelectedShare> both = {{"/a", "/a/x", 1, 10 * mega}, {"/b", "/b/x", 2, 20 * mega}};
    EXPECT_EQ(measured(both, 110 * mega, 120 * mega), (FreedSpace{30 * mega, 30 * mega, 30 * mega}));
    EXPECT_EQ(measured(both, 50 * mega, 105 * mega), (FreedSpace{30 * mega, 30 * mega, 5 * mega}));
    EXPECT_EQ(measured(both, 900 * mega, 100 * mega), (FreedSpace{30 * mega, 30 * mega, 10 * mega}));
}

TEST_F(FreedSpaceOfVolumes, CountsWhatItemsShareWhenTheLastOfThemHasGone) {
    const std::vector<SelectedShare> shares = {
        {"/a", "/a/x", 1, 10 * mega}, {"/a", "/a/y", 1, 0, true}, {"/b", "/b/z", 2, 20 * mega}};
    const std::vector<SelectedSet> sets = {{{"/a/x", "/a/y"}, 1, 40 * mega}};
    EXPECT_EQ(measured(shares, 150 * mega, 120 * mega, sets), (FreedSpace{70 * mega, 70 * mega, 70 * mega}));
    EXPECT_EQ(measured(shares, 110 * mega, 160 * mega, sets, "/a/y"), (FreedSpace{70 * mega, 30 * mega, 30 * mega}))
        << "and on its volume alone";
    volumes_.silent = 1;
    EXPECT_EQ(measured(shares, 150 * mega, 120 * mega, sets), (FreedSpace{20 * mega, 20 * mega, 20 * mega}));
}

TEST_F(FreedSpaceOfVolumes, CountsOnceWhatLiesInSomethingElseThatIsSelected) {
    EXPECT_EQ(measured({{"/a", "/a/logs/one", 1, 4 * mega},
                        {"/a", "/a/logs", 1, 9 * mega},
                        {"/a", "/a/logs.old", 1, 1 * mega},
                        {"/a", "/a/logs/two", 1, 5 * mega}},
                       110 * mega),
              (FreedSpace{10 * mega, 10 * mega, 10 * mega}));
}

TEST_F(FreedSpaceOfVolumes, LeavesOutAVolumeThatDoesNotAnswer) {
    volumes_.silent = 2;
    EXPECT_EQ(measured({{"/a", "/a/x", 1, 10 * mega}, {"/b", "/b/x", 2, 20 * mega}}, 107 * mega, 0),
              (FreedSpace{10 * mega, 10 * mega, 7 * mega}));
    EXPECT_EQ(measured({{"/b", "/b/x", 2, 20 * mega}}, 0), std::nullopt) << "nothing was learned";
}

TEST_F(FreedSpaceOfVolumes, CountsWhatWasEmptiedAndItsBlocksLikeAnyOther) {
    volumes_.setFree(1, 100 * mega);
    FreedSpaceMeter meter(volumes_);
    meter.begin({{"/a", "/a/log", 1, 30 * mega}, {"/a", "/a/logs", 1, 20 * mega, true}}, {}, {});
    meter.add({.paths = {"/a/log"}, .bytes = 30 * mega, .device = 1, .gone = true, .emptied = 1});
    meter.add({.paths = {"/a/logs"}, .bytes = 20 * mega, .device = 1, .gone = false, .emptied = 2});
    volumes_.setFree(1, 130 * mega);
    EXPECT_EQ(meter.end({}), (FreedSpace{50 * mega, 30 * mega, 30 * mega, {}, 3}));
}

TEST_F(FreedSpaceOfVolumes, AsksWhoUsesTheRestOnlyIfThatIsWorthTelling) {
    volumes_.inUseBefore = {{1, 10, 90 * mega, "old"}};
    volumes_.inUseAfter = {{1, 10, 90 * mega, "old"},      {1, 11, 5 * mega, "browser"}, {1, 12, 3 * mega, "small"},
                           {1, 13, 30 * mega, "database"}, {1, 14, 6 * mega, ""},        {1, 15, 1 * mega, "browser"}};
    const std::vector<SelectedShare> one = {{"/a", "/a/x", 1, 100 * mega}};
    EXPECT_EQ(measured(one, 196 * mega)->programs, QStringList()) << "less than a twentieth";
    const auto space = measured(one, 160 * mega);
    EXPECT_EQ(space->held(), 40 * mega);
    EXPECT_EQ(space->programs, QStringList({QStringLiteral("database"), QStringLiteral("browser")}));
    EXPECT_EQ(volumes_.asked, (std::vector<std::set<std::uint64_t>>{{1}, {1}}));
    EXPECT_EQ(measured({{"/a", "/a/x", 1, 900}}, 100 * mega)->programs, QStringList()) << "others write as much";
}

namespace {

class FreedSpaceOfAClean : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<FFItem> madeItem(const char* name, quint64 bytes) const {
        writeFile(caches_ / name, "x");
        auto item = FFItem::initWithPath(caches_ / name, bytes);
        const FoundIn place{caches_.native() + "/", files::statusOf(caches_)->identity};
        item->setFoundIn(std::make_shared<const FoundIn>(place), FFItem::FoundPathKind::folder);
        item->setPpbDeletable(true);
        return item;
    }
    [[nodiscard]] std::uint64_t device() const { return files::statusOf(caches_)->identity.device; }

    TemporaryFolder folder_;
    const fs::path caches_ = fs::create_directories(folder_ / "home/.cache") ? folder_ / "home/.cache" : fs::path();
    const SubstituteHome system_{folder_ / "home", {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    ToldVolumes volumes_;
    HeardNotifications heard_ = {notification::cleanFinished, notification::spaceFreed};
};

}  // namespace

TEST_F(FreedSpaceOfAClean, IsPostedAfterItsEndWithWhatAVolumeFreesLate) {
    volumes_.setFreeWhenFlushed(device(), 30 * mega);
    auto table = CleanTable::fileSections();
    table.volumes = &volumes_;
    const auto unticked = madeItem("unticked", 500 * mega);
    const auto late = madeItem("late", 700 * mega);
    const ItemArray items = {madeItem("a", 10 * mega), madeItem("b", 20 * mega), unticked, late};
    late->setPpbChecked(false);
    FCutter::Agreed agreed;
    agreed[Section::caches] = std::make_shared<const AgreedItems>(items);
    late->setPpbChecked(true);
    unticked->setPpbChecked(false);
    FCutter cutter(table);
    cutter.Clean(std::nullopt, std::nullopt, items, std::nullopt, std::nullopt, agreed);
    ASSERT_TRUE(runUntil([&] { return heard_.has(notification::spaceFreed); }));
    EXPECT_EQ(heard_.names(), (QStringList{notification::cleanFinished, notification::spaceFreed}));
    EXPECT_EQ(getPropfromNotification<FreedSpace>(heard_.last(notification::spaceFreed), key::freedSpace),
              (FreedSpace{30 * mega, 30 * mega, 30 * mega}));
    EXPECT_EQ(volumes_.held, 1) << "each volume once";
}

TEST_F(FreedSpaceOfAClean, IsNotPostedIfNothingWent) {
    auto table = CleanTable::fileSections();
    table.volumes = &volumes_;
    const auto gone = madeItem("a", 10 * mega);
    gone->setPpbChecked(false);
    {
        FCutter cutter(table);
        cutter.Clean(std::nullopt, std::nullopt, ItemArray{gone}, std::nullopt, std::nullopt);
        cutter.Clean(std::nullopt, std::nullopt, ItemArray(), std::nullopt, std::nullopt);
        ASSERT_TRUE(runUntil([&] { return heard_.names().count(notification::cleanFinished) == 2; }));
    }
    EXPECT_FALSE(heard_.has(notification::spaceFreed));
}

}  // namespace brimvault::tests
