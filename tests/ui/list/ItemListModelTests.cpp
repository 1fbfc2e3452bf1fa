#include "ui/list/ItemListModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <random>

#include "engine/model/FFItem.h"

using namespace brimvault;
using testing::ElementsAre;
using ui::ItemListModel;

namespace {

class ItemListModelTest : public testing::Test {
protected:
    using Item = ItemListModel::Item;
    static Item makeItem(const std::string& name, quint64 size) {
        auto item = engine::FFItem::initWithName(name, size);
        item->setPpbDeletable(true);
        return item;
    }

    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (int row = 0; row < model_.rowCount(); ++row) {
            found.push_back(model_.item(row)->ppdisplayName().toStdString());
        }
        return found;
    }

    quint64 modulus_ = 3;  ///< which the counts follow
    ItemListModel model_{{[](const engine::CleanableItem& item) { return item.ppdisplayName(); },
                          [](const engine::CleanableItem&) { return QString(); },
                          [](const engine::CleanableItem&) { return QLatin1String("icFile"); },
                          [this](const engine::CleanableItem& item) { return item.ppnSize() % modulus_; }, true}};
    QAbstractItemModelTester tester_{&model_, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ItemListModelTest, HeadersAreSeenAndReadAndEachButTheIconsSorts) {
    model_.setItems({makeItem("a", 1), makeItem("b", 5), makeItem("c", 3)});
    const struct {
        int column;
        const char *shown, *read;
        std::vector<std::string> largestFirst;
    } examples[] = {{ItemListModel::nameColumn, "Name", "Name", {"c", "b", "a"}},
                    {ItemListModel::sizeColumn, "Size", "Size", {"b", "c", "a"}},
                    {ItemListModel::iconColumn, "", "Icon", {"b", "c", "a"}},
                    {ItemListModel::countColumn, "Count", "Count", {"b", "a", "c"}},
                    {ItemListModel::checkColumn, "", "Selected", {"a", "b", "c"}}};
    for (const auto& example : examples) {
        const auto header = [&](int role) {
            return model_.headerData(example.column, Qt::Horizontal, role).toString().toStdString();
        };
        EXPECT_EQ(header(Qt::DisplayRole), example.shown);
        EXPECT_EQ(header(Qt::AccessibleTextRole), example.read);
        model_.sort(example.column, Qt::DescendingOrder);
        EXPECT_EQ(names(), example.largestFirst) << example.read;
    }
}

TEST_F(ItemListModelTest, NamesStandInNaturalOrderAndByWhatFollowsTheLastDotAtLast) {
    model_.setItems({makeItem("log 10", 1), makeItem("com.vendor.mail", 1), makeItem("log 9", 1), makeItem("Log 1", 1),
                     makeItem("com.vendor.browser", 1), makeItem("alpha", 1), makeItem("com.vendor", 1)});
    EXPECT_THAT(names(), ElementsAre("alpha", "com.vendor", "com.vendor.browser", "com.vendor.mail", "Log 1", "log 9",
                                     "log 10"));
}

// Every way in which rows change, against the plain rule of their order.
TEST_F(ItemListModelTest, RowsStandInOrderAndAreFollowedWhateverComesGoesAndIsTicked) {
    std::mt19937 random(11);
    int column = ItemListModel::nameColumn;
    bool ascending = true;
    const auto isBefore = [&](const Item& left, const Item& right) {
        const auto number = [&](const Item& item) {
            return column == ItemListModel::checkColumn   ? quint64{item->ppbChecked()}
                   : column == ItemListModel::countColumn ? item->ppnSize() % modulus_
                                                          : item->ppnSize();
        };
        const int byName = left->nameKey().compare(right->nameKey());
        if (column == ItemListModel::nameColumn) {
            return ascending ? byName < 0 : byName > 0;
        }
        return number(left) != number(right) ? ascending == (number(left) < number(right)) : byName < 0;
    };
    QList<Item> shown;
    const auto grow = [&](std::mt19937::result_type count) {
        for (; count > 0; --count) {
            shown.append(makeItem("item " + std::to_string(random()) + ".log", random() % 5 + 1));
        }
        return shown;
    };
    QHash<const engine::CleanableItem*, QPersistentModelIndex> followed;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const auto before = shown;  // as they stand
        const int row = static_cast<int>(random() % (static_cast<unsigned>(before.size()) + 1));
        const auto staying = [&] {
            return std::count_if(before.begin(), before.begin() + row,
                                 [&](auto& item) { return shown.contains(item); });
        };
        switch (random() % 6) {
            case 0:
            case 1:
                model_.appendItems(grow(random() % 40));
                break;
            case 2: {
                QList<const engine::CleanableItem*> gone;
                const auto share = random() % 3 + 1;
                for (const auto& item : before) {
                    if (random() % 4 < share) {
                        gone.append(item.get());
                        shown.removeOne(item);
                    }
                }
                ASSERT_EQ(model_.removeItems(gone, row), staying());
                break;
            }
            case 3:
                shown = shown.mid(static_cast<qsizetype>(random()) % (shown.size() + 1));
                grow(random() % 10);
                modulus_ = random() % 3 + 1;
                ASSERT_EQ(model_.setItems(shown + shown, row), staying());  // each is there once
                break;
            case 4:
                for (const auto& item : std::as_const(shown)) {
                    item->setPpbChecked(random() % 3 != 0);
                }
                model_.resortByMarks();
                break;
            default: {
                const int columns[] = {ItemListModel::checkColumn, ItemListModel::nameColumn, ItemListModel::sizeColumn,
                                       ItemListModel::countColumn};
                column = columns[random() % 4];
                ascending = random() % 2 == 0;
                model_.sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
            }
        }
        std::sort(shown.begin(), shown.end(), isBefore);
        ASSERT_EQ(model_.rowCount(), shown.size());
        for (int place = 0; place < model_.rowCount(); ++place) {
            ASSERT_EQ(model_.item(place), shown[place]) << "row " << place;
            auto& index = followed[shown[place].get()];
            if (!index.isValid()) {
                index = model_.index(place, ItemListModel::nameColumn);
            }
            ASSERT_EQ(index.row(), place) << "what follows a row";
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
