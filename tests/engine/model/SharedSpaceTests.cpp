// Totals of what would be freed: files with names in several items, and items in other items.

#include "engine/model/SharedSpace.h"

#include <gmock/gmock.h>

#include "engine/model/DataMan.h"
#include "support/EventLoop.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;
using files::NamedNode;

namespace {

constexpr PerSection<bool> in(std::initializer_list<Section> wanted) {
    PerSection<bool> sections;
    for (const Section section : wanted) {
        sections[section] = true;
    }
    return sections;
}

const PerSection<bool> everywhere = in({Section::downloads, Section::caches, Section::trash, Section::logs});

// Of its own an item frees 1000 bytes.
std::shared_ptr<FFItem> item(const std::string& path, std::vector<NamedNode> shared = {}) {
    auto made = FFItem::initWithPath(path, 50'000);
    made->setPpbDeletable(true);
    made->setSpace({1000, std::move(shared)});
    return made;
}

NamedNode file(std::uint64_t inode, std::uint64_t allocated, std::uint32_t names, std::uint32_t allNames) {
    return {7, inode, allocated, names, allNames};
}

class SharedSpaceOf : public testing::Test {
protected:
    void found(Section section, const ItemArray& items) {
        const auto words = vocabulary(section);
        post(words.scanFinished, {{words.arrayKey, items}});
    }
    void gone(Section section, const ItemArray& items, bool toTrash = false) {
        const auto words = vocabulary(section);
        const UserInfo info = {{words.arrayKey, items}, {key::movedToTrash, Number{toTrash ? 1 : 0}}};
        untilAnswered([&] { post(words.cleanFinished, info); });
    }
    void back(Section section, const std::shared_ptr<FFItem>& item) {
        const auto words = vocabulary(section);
        untilAnswered([&] { post(words.scanProgress, {{words.deltaKey, ItemArray{item}}}); });
    }
    void endScan() {
        untilAnswered([] { post(notification::scanFinished); });
    }
    [[nodiscard]] quint64 freed(const PerSection<bool>& sections = everywhere) const {
        return model.freesOfSelection(sections);
    }

    DataMan model;

private:
    static void post(const QString& name, const UserInfo& info = {}) {
        NotificationCenter::defaultCenter().post(name, info);
    }
    template <typename Action>
    void untilAnswered(Action action) {
        const int before = answers_;
        action();
        ASSERT_TRUE(runUntil([&] { return answers_ > before; }));
    }

    int answers_ = 0;  // that the model has got
    QObject mainThread_;
    const NotificationCenter::Observation answered_ = NotificationCenter::defaultCenter().addMainThreadObserver(
        notification::sharedSpaceFound, &mainThread_, [this](const auto&) { ++answers_; });
};

}  // namespace

TEST_F(SharedSpaceOf, SeveralItemsIsFreedWhenAllOfThemAreTickedAndTheirSectionsToo) {
    const ItemArray caches = {item("/c/a", {file(1, 200'000, 1, 3), file(2, 30'000, 2, 3)}),
                              item("/c/b", {file(1, 200'000, 1, 3), file(3, 9'000, 1, 2)})};
    const ItemArray downloads = {item("/d/x", {file(1, 200'000, 1, 3), file(2, 30'000, 1, 3)})};
    found(Section::caches, caches);
    found(Section::downloads, downloads);
    endScan();
    EXPECT_EQ(freed(), 233'000U) << "file 3 has a name elsewhere";
    EXPECT_EQ(freed(in({Section::caches})), 2'000U);
    caches[1]->setPpbChecked(false);
    EXPECT_EQ(freed(), 32'000U);
    caches[1]->setPpbChecked(true);
    EXPECT_EQ(freed(), 233'000U);

    gone(Section::caches, {caches[0]});
    EXPECT_EQ(freed(), 232'000U) << "the last names are those that the others have";
    EXPECT_EQ(freed(in({Section::downloads})), 31'000U);
    EXPECT_EQ(downloads[0]->frees(), 31'000U) << "the last name of file 2";

    found(Section::downloads, {item("/d/x", {file(1, 200'000, 1, 2)})});
    endScan();
    EXPECT_EQ(freed(), 202'000U) << "its section was scanned alone";
    found(Section::downloads, {item("/d/x", {file(1, 200'000, 1, 3)})});
    endScan();
    EXPECT_EQ(freed(), 2'000U) << "what was removed before that scan is no name that it counted";
}

TEST_F(SharedSpaceOf, AnItemInTheTrashIsNotFreedAndIsTheirsAgainWhenItIsBack) {
    const auto one = item("/d/one", {file(1, 30'000, 1, 2)});
    const auto other = item("/d/other", {file(1, 30'000, 1, 2)});
    found(Section::downloads, {one, other});
    endScan();
    EXPECT_EQ(freed(), 32'000U);
    gone(Section::downloads, {one}, true);
    EXPECT_EQ(freed(), 1'000U);
    back(Section::downloads, one);
    EXPECT_EQ(freed(), 32'000U);
    gone(Section::downloads, {other});
    EXPECT_EQ(freed(), 31'000U);
    EXPECT_EQ(one->frees(), 31'000U);
}

TEST_F(SharedSpaceOf, ItemsInOtherItemsCountsOnce) {
    const auto whole = item("/logs");
    whole->setSpace({4'000, {file(1, 200'000, 1, 2)}});
    const ItemArray logs = {item("/logs/inside", {file(1, 200'000, 1, 2)}), item("/logs/deep/inside"), item("/other"),
                            whole};
    found(Section::logs, logs);
    endScan();
    EXPECT_EQ(freed(), 5'000U) << "the file's only name here was seen twice";
    model.setChecked(Section::logs, *logs[0], false);
    EXPECT_EQ(freed(), 2'000U) << "the whole is not ticked any more";
    model.setChecked(Section::logs, *whole, true);
    gone(Section::logs, {logs[0], logs[2]});
    EXPECT_EQ(freed(), 4'000U) << "nor is that name a removed one, which the whole had as well";
}

}  // namespace brimvault::tests
