#include "engine/model/SectionItems.h"

#include <gmock/gmock.h>

#include <random>

namespace brimvault::tests {

using engine::FFItem;
using engine::ItemArray;
using engine::SectionItems;

namespace {

std::shared_ptr<FFItem> at(const std::string& path) {
    auto item = FFItem::initWithPath(path, 1);
    item->setPpbDeletable(true);
    return item;
}

std::string ticked(const ItemArray& items) {
    std::string marks;
    for (const auto& item : items) {
        marks += item->ppbChecked() ? '+' : '-';
    }
    return marks;
}

bool lies(const FFItem& item, const FFItem& in) { return item.pathBytes().starts_with(in.pathBytes() + "/"); }

std::size_t place(qsizetype number) { return static_cast<std::size_t>(number); }

// The marks that are to come of these, item by item and without any order: what holds unticked items is not ticked.
std::string settled(const ItemArray& items, std::string marks) {
    for (qsizetype holder = 0; holder < items.size(); ++holder) {
        for (qsizetype item = 0; item < items.size(); ++item) {
            if (marks[place(item)] == '-' && lies(*items[item], *items[holder])) {
                marks[place(holder)] = '-';
            }
        }
    }
    return marks;
}

// After a click, which goes for what lies in the item as well.
std::string clicked(const ItemArray& items, qsizetype which, bool checked) {
    auto marks = ticked(items);
    for (qsizetype item = 0; item < items.size(); ++item) {
        const bool goesAlong = lies(*items[item], *items[which]) && (!checked || items[item]->mayBeTickedAlong());
        if (item == which || goesAlong) {
            marks[place(item)] = checked ? '+' : '-';
        }
    }
    return settled(items, std::move(marks));
}

}  // namespace

TEST(SectionItems, ClicksBatchesAndRemovalsAgreeWithAReckoningItemByItem) {
    std::mt19937 random(20261122);
    int clicks = 0;
    int saidInVain = 0;
    const auto pick = [&](qsizetype count) { return static_cast<qsizetype>(random()) % count; };
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> paths = {"/r"};
        for (int count = 0; count < 60; ++count) {
            paths.push_back(paths[static_cast<std::size_t>(pick(static_cast<qsizetype>(paths.size())))] + "/" +
                            std::string(1, static_cast<char>('a' + pick(3))) + (pick(4) == 0 ? " " : ""));
        }
        std::sort(paths.begin(), paths.end());
        paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
        std::shuffle(paths.begin(), paths.end(), random);
        SectionItems list;
        for (std::size_t next = 0; next < paths.size();) {
            ItemArray batch;
            for (auto count = pick(5); count >= 0 && next < paths.size(); --count) {
                batch.append(at(paths[next++]));
                batch.last()->setPpbChecked(pick(8) != 0);
                batch.last()->setPpbDeletable(pick(8) != 0);
            }
            const auto all = list.items() + batch;
            const auto expected = settled(all, ticked(all));
            list.append(batch);
            ASSERT_EQ(ticked(list.items()), expected);
            for (int click = 0; click < 4; ++click) {
                const auto which = pick(all.size());
                const bool checked = pick(2) == 0;
                const auto after = clicked(all, which, checked);
                auto before = ticked(all);
                const bool others = list.setChecked(*all[which], checked);
                ASSERT_EQ(ticked(all), after) << all[which]->pathBytes() << checked;
                before[place(which)] = after[place(which)];
                ASSERT_TRUE(others || before == after);
                ++clicks;
                saidInVain += others && before == after ? 1 : 0;
            }
            all[pick(all.size())]->setPpbChecked(false);  // one by one, as not by a click
            const auto afterwards = settled(all, ticked(all));
            list.settleMarks();
            ASSERT_EQ(ticked(all), afterwards);
            if (pick(3) == 0) {
                list.remove({list.items()[pick(list.items().size())], list.items()[pick(list.items().size())]});
            }
        }
    }
    EXPECT_LT(saidInVain, clicks / 20);
}

}  // namespace brimvault::tests
