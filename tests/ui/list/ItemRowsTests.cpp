// The rows of a list: their order, their checks, and their texts.

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QPainter>
#include <QTextDocument>
#include <cmath>
#include <random>

#include "app/Translations.h"
#include "engine/model/FFItem.h"
#include "ui/list/HTableHeaderView.h"
#include "ui/list/ItemListModel.h"
#include "ui/list/ItemRowDelegate.h"
#include "ui/list/TTableView.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

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

TEST_F(ItemListModelTest, TitlesOfNumbersAreWholeBesideTheArrowAtEveryScale) {
    for (const char* language : {"en", "de"}) {
        const app::Translations spoken({QLatin1String(language)});
        ui::TTableView table;
        table.setModel(&model_);
        for (const int column : {ItemListModel::countColumn, ItemListModel::sizeColumn}) {
            table.horizontalHeader()->setSortIndicator(column, Qt::DescendingOrder);
            const auto* header = static_cast<const ui::HTableHeaderView*>(table.horizontalHeader());
            const int width = table.columnWidth(column);
            const auto drawn = [&](int room) {
                QImage image(room, 100, QImage::Format_RGB32);
                QPainter painter(&image);
                header->cell(column).draw(painter, image.rect(), Qt::LeftToRight, header->font());
                return image.copy(room - width, 0, width, image.height());
            };
            EXPECT_EQ(drawn(width), drawn(3 * width)) << header->cell(column).title.toStdString();
        }
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

TEST(TextLineTest, IsNotElidedInTheRoomThatItNeeds) {
    const QFont font = ui::look::font(12);
    for (int number = 0; number < 1000; ++number) {
        const auto text = QStringLiteral("frees %1 MB").arg(number * 0.37);
        const int room = ui::lineWidth(text, font);
        EXPECT_FALSE(ui::isElided(text, font, room)) << text.toStdString();
        EXPECT_TRUE(ui::isElided(text, font, room - 2)) << text.toStdString();
    }
}

// Draws the cell of a name in a window of that width, with a note and without.
class NotedRow : public testing::Test {
protected:
    [[nodiscard]] QImage drawn(int width, const QString& note, bool selected = false) {
        note_ = note;
        QImage image(width, ui::look::scaled(ui::look::itemRowHeight), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        QStyleOptionViewItem option;
        option.rect = image.rect();
        option.direction = direction_;
        option.state = selected ? QStyle::State_Selected : QStyle::State_None;
        view_.itemDelegate()->paint(&painter, option, model_.index(0, ItemListModel::nameColumn));
        return image;
    }
    // The first and the last column in which two drawings differ; -1 for none.
    [[nodiscard]] static std::pair<int, int> difference(const QImage& left, const QImage& right) {
        std::pair columns(-1, -1);
        for (int x = 0; x < left.width(); ++x) {
            if (left.copy(x, 0, 1, left.height()) != right.copy(x, 0, 1, right.height())) {
                columns = {columns.first < 0 ? x : columns.first, x};
            }
        }
        return columns;
    }

    QString note_;
    Qt::LayoutDirection direction_ = Qt::LeftToRight;
    ItemListModel model_{{[](const engine::CleanableItem& item) { return item.ppdisplayName(); },
                          [](const engine::CleanableItem&) { return QStringLiteral("/path/<b>"); },
                          [](const engine::CleanableItem&) { return QLatin1String("icFolder"); },
                          {},
                          false,
                          [this](const engine::CleanableItem&) { return note_; }}};
    ui::TTableView view_;

    void SetUp() override {
        model_.setItems({engine::FFItem::initWithName("huggingface", 1)});
        view_.setModel(&model_);
    }
};

TEST_F(NotedRow, ShowsTheNoteBehindTheNameAsFarAsThereIsRoomAtEveryScale) {
    using ui::look::scaled;
    const int wide = scaled(600);
    const int margin = 10;
    const int name = QFontMetrics(ui::look::font(13)).horizontalAdvance(QStringLiteral("huggingface"));
    const QString sentence = QStringLiteral("May hold work that exists nowhere else");
    const auto shown = [&](int width) { return difference(drawn(width, {}), drawn(width, sentence)); };
    const auto whole = shown(wide);
    EXPECT_GT(whole.first, margin + name) << "the name is as it is without a note";
    EXPECT_LT(whole.second, wide - scaled(100));
    const int less = whole.second - scaled(80);
    EXPECT_GT(shown(less).first, margin + name);
    EXPECT_LT(shown(less).second, less - margin + 1) << "elided";
    EXPECT_EQ(shown(margin + name + scaled(16) + scaled(40) - 1 + margin), std::pair(-1, -1))
        << "too narrow to be read";
    direction_ = Qt::RightToLeft;
    EXPECT_LT(shown(wide).second, wide - margin - name) << "the other way round";
    EXPECT_NE(drawn(wide, sentence, true), drawn(wide, {}, true)) << "on a selected row as well";
}

TEST_F(NotedRow, TellsTheNoteInItsTooltipBelowThePathAndToAssistiveClients) {
    note_ = QStringLiteral("Takes long & loud");
    const auto cell = model_.index(0, ItemListModel::nameColumn);
    EXPECT_EQ(cell.data(Qt::AccessibleDescriptionRole).toString(), note_);
    QTextDocument tooltip;
    tooltip.setHtml(cell.data(Qt::ToolTipRole).toString());
    EXPECT_EQ(tooltip.toPlainText(), QStringLiteral("/path/<b>\nTakes long & loud"));
}

TEST_F(NotedRow, TellsBesideTheSizeWhatItFreesWhereThatIsFarFromItAtEveryScale) {
    using ui::look::scaled;
    const auto show = [&](quint64 frees) {
        const auto item = engine::FFItem::initWithName("huggingface", 50'000'000);
        item->setSpace({frees});
        model_.setItems({item});
    };
    const auto cell = [&](int role) { return model_.index(0, ItemListModel::nameColumn).data(role).toString(); };
    const int wide = scaled(600);
    const QString sentence =
        QStringLiteral("May hold work that exists nowhere else, and so on, and so forth, for long");
    show(46'000'000);
    const auto without = drawn(wide, {});
    const auto noted = drawn(wide, sentence);
    const auto narrow = drawn(scaled(130), {});
    EXPECT_EQ(cell(Qt::AccessibleDescriptionRole), QString());
    show(12'300'000);
    const auto [first, last] = difference(without, drawn(wide, {}));
    EXPECT_GT(first, wide - scaled(110));
    EXPECT_GT(last, wide - scaled(20));
    EXPECT_LT(last, wide - 10 + 1);
    EXPECT_GE(difference(noted, drawn(wide, sentence)).first, first - scaled(120)) << "the note makes room";
    EXPECT_EQ(difference(narrow, drawn(scaled(130), {})), std::pair(-1, -1)) << "the name comes first";
    direction_ = Qt::RightToLeft;
    EXPECT_LT(difference(drawn(wide, {}), without).first, scaled(20));

    note_ = QStringLiteral("Takes long");
    EXPECT_EQ(cell(Qt::AccessibleDescriptionRole), QStringLiteral("Takes long. frees 12.3 MB"));
    EXPECT_THAT(cell(Qt::ToolTipRole).toStdString(), testing::HasSubstr("frees 12.3 MB. Snapshots"));
}

double luminance(QRgb colour) {
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(qRed(colour)) + 0.7152 * part(qGreen(colour)) + 0.0722 * part(qBlue(colour));
}

TEST(Look, WarningsCanBeReadOnEveryGround) {
    namespace look = ui::look;
    const std::pair<QRgb, QRgb> pairs[] = {{look::textWarning, look::row},
                                           {look::textWarning, look::rowAlternate},
                                           {look::textWarning, look::warningGround},
                                           {look::textWarningOnAccent, look::selection}};
    for (const auto& [text, ground] : pairs) {
        const auto [darker, lighter] = std::minmax({luminance(text), luminance(ground)});
        EXPECT_GE((lighter + 0.05) / (darker + 0.05), 4.5) << std::hex << text << " on " << ground;
    }
}

}  // namespace
