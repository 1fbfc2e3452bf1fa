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

// What is to hold of the marks, item by item and without any order.
class Reckoning {
public:
    explicit Reckoning(const ItemArray& items) : items_(items) {
        for (const auto& item : items) {
            marks_[item] = item->ppbChecked();
        }
    }
    void set(const std::shared_ptr<FFItem>& clicked, bool checked) {
        marks_[clicked] = checked;
        for (const auto& item : items_) {
            if (lies(item, clicked) && (!checked || item->mayBeTickedAlong())) {
                marks_[item] = checked;
            }
        }
        settle();
    }
    void settle() {
        for (const auto& holder : items_) {
            for (const auto& item : items_) {
                marks_[holder] = marks_[holder] && !(lies(item, holder) && !marks_[item]);
            }
        }
    }
    [[nodiscard]] std::string marks() const {
        std::string text;
        for (const auto& item : items_) {
            text += marks_.at(item) ? '+' : '-';
        }
        return text;
    }

private:
    static bool lies(const std::shared_ptr<FFItem>& item, const std::shared_ptr<FFItem>& in) {
        return item->pathBytes().starts_with(in->pathBytes() + "/");
    }
    ItemArray items_;
    std::map<std::shared_ptr<FFItem>, bool> marks_;
};

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
            Reckoning expected(list.items() + batch);
            expected.settle();
            list.append(batch);
            ASSERT_EQ(ticked(list.items()), expected.marks());
            for (int click = 0; click < 4; ++click) {
                const auto clicked = list.items()[pick(list.items().size())];
                const bool checked = pick(2) == 0;
                Reckoning after(list.items());
                after.set(clicked, checked);
                const auto before = ticked(list.items());
                const bool others = list.setChecked(*clicked, checked);
                ASSERT_EQ(ticked(list.items()), after.marks()) << clicked->pathBytes() << checked;
                const auto now = ticked(list.items());
                const auto place = static_cast<std::size_t>(list.items().indexOf(clicked));
                const bool differ = now.substr(0, place) != before.substr(0, place) ||
                                    now.substr(place + 1) != before.substr(place + 1);
                ASSERT_TRUE(others || !differ);
                ++clicks;
                saidInVain += others && !differ ? 1 : 0;
            }
            list.items()[pick(list.items().size())]->setPpbChecked(false);  // one by one, as not by a click
            Reckoning settled(list.items());
            settled.settle();
            list.settleMarks();
            ASSERT_EQ(ticked(list.items()), settled.marks());
            if (pick(3) == 0) {
                list.remove({list.items()[pick(list.items().size())], list.items()[pick(list.items().size())]});
            }
        }
    }
    EXPECT_LT(saidInVain, clicks / 20);
}

}  // namespace brimvault::tests
