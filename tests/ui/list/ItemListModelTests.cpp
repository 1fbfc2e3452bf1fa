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

TEST_F(ItemListModelTest, TheIconColumnSortsNothing) {
    model_.setItems({makeItem("a", 1), makeItem("b", 2)});
    model_.sort(ItemListModel::sizeColumn, Qt::DescendingOrder);
    model_.sort(ItemListModel::iconColumn, Qt::AscendingOrder);
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    EXPECT_EQ(model_.sortColumn(), ItemListModel::sizeColumn);
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
