#include "ui/list/SortedRows.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "engine/model/FFItem.h"

using namespace brimvault;
using testing::ElementsAre;
using ui::SortedRows;
using ui::SortKey;
using Item = SortedRows::Item;

namespace {

Item makeItem(const std::string& name, quint64 size) {
    auto item = engine::FFItem::initWithName(name, size);
    item->setPpbDeletable(true);
    return item;
}

// Applies each change that it hears of to a list of its own.
class Heard final : public ui::RowObserver {
public:
    explicit Heard(const SortedRows& rows) : rows_(rows) {}

    void willInsert(int first, int last) override {
        EXPECT_EQ(first, items_.size());
        count_ = last - first + 1;
    }
    void didInsert() override {
        for (; count_ > 0; --count_) {
            items_.append(rows_.item(static_cast<int>(items_.size())));
        }
    }
    void willRemove(int first, int last) override { items_.remove(first, last - first + 1); }
    void didRemove() override {}
    void willReorder() override {}
    void didReorder(const std::function<int(int)>& placeNow) override {
        const QList<Item> before = items_;
        for (int place = 0; place < before.size(); ++place) {
            items_[placeNow(place)] = before[place];
        }
    }

    [[nodiscard]] const QList<Item>& items() const { return items_; }

private:
    const SortedRows& rows_;
    QList<Item> items_;
    int count_ = 0;
};

class SortedRowsTest : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (int row = 0; row < rows_.size(); ++row) {
            found.push_back(rows_.item(row)->ppdisplayName().toStdString());
        }
        return found;
    }

    Heard heard_{rows_};
    SortedRows rows_{heard_};
};

TEST_F(SortedRowsTest, NamesStandInNaturalOrder) {
    rows_.append({makeItem("log 10", 1), makeItem("log 9", 1), makeItem("Log 1", 1), makeItem("alpha", 1)});
    EXPECT_THAT(names(), ElementsAre("alpha", "Log 1", "log 9", "log 10"));
}

TEST_F(SortedRowsTest, NamesThatDifferOnlyBehindTheLastDotStandInTheOrderOfTheWholeName) {
    rows_.append({makeItem("com.vendor.mail", 1), makeItem("com.vendor.browser", 1), makeItem("com.vendor", 1)});
    EXPECT_THAT(names(), ElementsAre("com.vendor", "com.vendor.browser", "com.vendor.mail"));
}

TEST_F(SortedRowsTest, SizesStandByValueAndChecksBeforeTheirNames) {
    const QList<Item> items = {makeItem("a", 900), makeItem("b", 10000), makeItem("c", 20)};
    items[1]->setPpbChecked(false);
    rows_.append(items);
    rows_.sort(SortKey::size, Qt::DescendingOrder);
    EXPECT_THAT(names(), ElementsAre("b", "a", "c"));
    rows_.sort(SortKey::checked, Qt::AscendingOrder);
    EXPECT_THAT(names(), ElementsAre("b", "a", "c"));
    rows_.sort(SortKey::checked, Qt::DescendingOrder);
    EXPECT_THAT(names(), ElementsAre("a", "c", "b"));
}

TEST_F(SortedRowsTest, ItemsGivenTwiceAreThereOnce) {
    const auto item = makeItem("twice", 1);
    rows_.append({item, makeItem("once", 1), item});
    EXPECT_THAT(names(), ElementsAre("once", "twice"));
}

// Every way in which rows change, against the plain rule of their order.
TEST_F(SortedRowsTest, RowsStandInOrderWhateverComesGoesAndIsTicked) {
    std::mt19937 random(11);
    QList<Item> shown;
    SortKey key = SortKey::name;
    bool ascending = true;
    const auto isBefore = [&](const Item& left, const Item& right) {
        const auto number = [&](const Item& item) {
            return key == SortKey::checked ? quint64{item->ppbChecked()} : item->ppnSize();
        };
        const int byName = left->nameKey().compare(right->nameKey());
        if (key == SortKey::name) {
            return ascending ? byName < 0 : byName > 0;
        }
        if (number(left) != number(right)) {
            return ascending == (number(left) < number(right));
        }
        return byName < 0;
    };
    for (int round = 0; round < 400; ++round) {
        const auto grow = [&](std::mt19937::result_type count) {
            QList<Item> added;
            for (; count > 0; --count) {
                added.append(makeItem("item " + std::to_string(random()) + ".log", random() % 5 + 1));
            }
            shown += added;
            return added;
        };
        switch (random() % 6) {
            case 0:
            case 1:
                rows_.append(grow(random() % 40));
                break;
            case 2: {
                QList<const engine::CleanableItem*> gone;
                const auto share = random() % 3 + 1;
                shown.removeIf([&](const auto& item) {
                    const bool goes = random() % 4 < share;
                    if (goes) {
                        gone.append(item.get());
                    }
                    return goes;
                });
                rows_.remove(gone);
                break;
            }
            case 3:
                shown = shown.mid(static_cast<qsizetype>(random()) % (shown.size() + 1));
                grow(random() % 10);
                rows_.keepOnly(shown);
                rows_.append(shown);
                break;
            case 4:
                for (const auto& item : std::as_const(shown)) {
                    item->setPpbChecked(random() % 3 != 0);
                }
                rows_.followMarks();
                break;
            default: {
                const SortKey keys[] = {SortKey::checked, SortKey::name, SortKey::size};
                key = keys[random() % 3];
                ascending = random() % 2 == 0;
                rows_.sort(key, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
            }
        }
        auto expected = shown;
        std::sort(expected.begin(), expected.end(), isBefore);
        ASSERT_EQ(rows_.size(), expected.size()) << round;
        for (int row = 0; row < rows_.size(); ++row) {
            ASSERT_EQ(rows_.item(row), expected[row]) << "round " << round << ", row " << row;
        }
        ASSERT_EQ(heard_.items(), expected) << "round " << round << ": what the observer hears adds up to the same";
    }
}

}  // namespace
