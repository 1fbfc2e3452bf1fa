#include "ui/list/ItemListModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <random>

#include "engine/model/FFItem.h"

using namespace brimvault;
using testing::ElementsAre;
using ui::ItemListModel;

namespace {

ItemListModel::Item makeItem(const std::string& name, quint64 size) {
    auto item = engine::FFItem::initWithName(name, size);
    item->setPpbDeletable(true);
    return item;
}

class ItemListModelTest : public testing::Test {
protected:
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (int row = 0; row < model_.rowCount(); ++row) {
            found.push_back(model_.item(row)->ppdisplayName().toStdString());
        }
        return found;
    }

    ItemListModel model_{{[](const engine::CleanableItem& item) { return item.ppdisplayName(); },
                          [](const engine::CleanableItem&) { return QString(); },
                          [](const engine::CleanableItem&) { return QLatin1String("icFile"); },
                          {},
                          false}};
    QAbstractItemModelTester tester_{&model_, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ItemListModelTest, NamesStandInNaturalOrder) {
    model_.setItems({makeItem("log 10", 1), makeItem("log 9", 1), makeItem("Log 1", 1), makeItem("alpha", 1)});
    EXPECT_THAT(names(), ElementsAre("alpha", "Log 1", "log 9", "log 10"));
}

TEST_F(ItemListModelTest, NamesThatDifferOnlyBehindTheLastDotStandInTheOrderOfTheWholeName) {
    model_.setItems({makeItem("com.vendor.mail", 1), makeItem("com.vendor.browser", 1), makeItem("com.vendor", 1)});
    EXPECT_THAT(names(), ElementsAre("com.vendor", "com.vendor.browser", "com.vendor.mail"));
}

TEST_F(ItemListModelTest, SizesStandByValueAndChecksBeforeTheirNames) {
    const QList<ItemListModel::Item> items = {makeItem("a", 900), makeItem("b", 10000), makeItem("c", 20)};
    items[1]->setPpbChecked(false);
    model_.setItems(items);
    model_.sort(ItemListModel::sizeColumn, Qt::DescendingOrder);
    EXPECT_THAT(names(), ElementsAre("b", "a", "c"));
    model_.sort(ItemListModel::checkColumn, Qt::AscendingOrder);
    EXPECT_THAT(names(), ElementsAre("b", "a", "c"));
    model_.sort(ItemListModel::checkColumn, Qt::DescendingOrder);
    EXPECT_THAT(names(), ElementsAre("a", "c", "b"));
    model_.sort(ItemListModel::iconColumn, Qt::AscendingOrder);
    EXPECT_THAT(names(), ElementsAre("a", "c", "b")) << "the icon column sorts nothing";
}

TEST_F(ItemListModelTest, ItemsGivenTwiceAreShownOnce) {
    const auto item = makeItem("twice", 1);
    model_.setItems({item, makeItem("once", 1), item});
    EXPECT_THAT(names(), ElementsAre("once", "twice"));
}

TEST_F(ItemListModelTest, RowsKeepTheirSelectionWhateverComesGoesAndMoves) {
    std::mt19937 random(7);
    QList<ItemListModel::Item> pool;
    for (int number = 0; number < 60; ++number) {
        pool.append(makeItem("item " + std::to_string(number), random() % 1000 + 1));
    }
    const auto followed = pool[30];
    model_.setItems(pool);
    QItemSelectionModel selection(&model_);
    selection.setCurrentIndex(model_.index(model_.rowOf(followed.get()), ItemListModel::nameColumn),
                              QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    for (int round = 0; round < 200; ++round) {
        QList<ItemListModel::Item> chosen = {followed};
        for (const auto& item : pool) {
            if (random() % 2 == 0) {
                chosen.append(item);
            }
        }
        std::shuffle(chosen.begin(), chosen.end(), random);
        model_.setItems(chosen);
        const int columns[] = {ItemListModel::checkColumn, ItemListModel::nameColumn, ItemListModel::sizeColumn};
        model_.sort(columns[random() % 3], random() % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
        ASSERT_EQ(selection.selectedRows().size(), 1);
        ASSERT_EQ(model_.item(selection.selectedRows().first().row()), followed);
        ASSERT_EQ(model_.item(selection.currentIndex().row()), followed);
    }
}

// Every way in which rows change, against the plain rule of their order.
TEST_F(ItemListModelTest, RowsStandInOrderWhateverComesGoesAndIsTicked) {
    std::mt19937 random(11);
    QList<ItemListModel::Item> shown;
    int column = ItemListModel::nameColumn;
    bool ascending = true;
    const auto isBefore = [&](const ItemListModel::Item& left, const ItemListModel::Item& right) {
        const auto number = [&](const ItemListModel::Item& item) {
            return column == ItemListModel::checkColumn ? quint64{item->ppbChecked()} : item->ppnSize();
        };
        const int byName = left->nameKey().compare(right->nameKey());
        if (column == ItemListModel::nameColumn) {
            return ascending ? byName < 0 : byName > 0;
        }
        if (number(left) != number(right)) {
            return ascending == (number(left) < number(right));
        }
        return byName < 0;
    };
    for (int round = 0; round < 400; ++round) {
        const auto grow = [&](std::mt19937::result_type count) {
            QList<ItemListModel::Item> added;
            for (; count > 0; --count) {
                added.append(makeItem("item " + std::to_string(random()) + ".log", random() % 5 + 1));
            }
            shown += added;
            return added;
        };
        switch (random() % 6) {
            case 0:
            case 1:
                model_.appendItems(grow(random() % 40));
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
                model_.removeItems(gone);
                break;
            }
            case 3:
                shown = shown.mid(static_cast<qsizetype>(random()) % (shown.size() + 1));
                grow(random() % 10);
                model_.setItems(shown);
                break;
            case 4:
                for (const auto& item : std::as_const(shown)) {
                    item->setPpbChecked(random() % 3 != 0);
                }
                model_.followMarks();
                break;
            default: {
                const int columns[] = {ItemListModel::checkColumn, ItemListModel::nameColumn,
                                       ItemListModel::sizeColumn};
                column = columns[random() % 3];
                ascending = random() % 2 == 0;
                model_.sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
            }
        }
        auto expected = shown;
        std::sort(expected.begin(), expected.end(), isBefore);
        ASSERT_EQ(model_.rowCount(), expected.size()) << round;
        for (int row = 0; row < model_.rowCount(); ++row) {
            ASSERT_EQ(model_.item(row), expected[row]) << "round " << round << ", row " << row;
        }
    }
}

TEST_F(ItemListModelTest, AChangeOfACheckIsAskedForAndRefusedWhileDisabled) {
    model_.setItems({makeItem("a", 1)});
    std::vector<std::pair<int, bool>> asked;
    QObject::connect(&model_, &ItemListModel::checkRequested,
                     [&](int row, bool checked) { asked.emplace_back(row, checked); });
    const auto check = model_.index(0, ItemListModel::checkColumn);
    EXPECT_TRUE(model_.setData(check, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_TRUE(model_.item(0)->ppbChecked()) << "the owner decides";
    model_.setEnabled(false);
    EXPECT_FALSE(model_.setData(check, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_FALSE(model_.flags(check).testFlag(Qt::ItemIsUserCheckable));
    EXPECT_THAT(asked, ElementsAre(std::pair(0, false)));
}

}  // namespace
