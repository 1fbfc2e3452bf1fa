#include "ui/list/RowIcons.h"

#include <gmock/gmock.h>

#include <QPaintEvent>
#include <QScrollBar>
#include <QSemaphore>
#include <QTest>
#include <mutex>

#include "engine/model/FFItem.h"
#include "support/EventLoop.h"
#include "ui/list/ItemListModel.h"
#include "ui/list/ItemRowDelegate.h"
#include "ui/list/TTableView.h"

using namespace brimvault;
using tests::runUntil;
using ui::ItemListModel;
using ui::RowPicture;

namespace {

constexpr int manyRows = 1000;
const QColor colour(10, 200, 30);

// Notes what it is asked for, and answers when it is let.
class ToldIcons {
public:
    QImage load(const RowPicture& picture, int pixels) {
        {
            const std::lock_guard guard(mutex_);
            asked_.push_back(picture.source.toInt());
        }
        let.acquire();
        QImage image(pixels, pixels, QImage::Format_ARGB32);
        image.fill(picture.source == "3" ? Qt::transparent : colour);
        return picture.source == "3" ? QImage() : image;
    }

    [[nodiscard]] std::vector<int> asked() const {
        const std::lock_guard guard(mutex_);
        return asked_;
    }

    QSemaphore let;

private:
    mutable std::mutex mutex_;
    std::vector<int> asked_;
};

// Which rows of a view are drawn anew.
class DrawnRows final : public QObject {
public:
    explicit DrawnRows(QTableView& view) : view_(view) { view.viewport()->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            const QRect place = static_cast<QPaintEvent*>(event)->region().boundingRect();
            rows.emplace_back(view_.rowAt(place.top()), view_.rowAt(place.bottom()));
        }
        return QObject::eventFilter(object, event);
    }

    std::vector<std::pair<int, int>> rows;

private:
    QTableView& view_;
};

class RowIcons : public testing::Test {
protected:
    void SetUp() override {
        QList<ItemListModel::Item> items;
        for (int row = 0; row < manyRows; ++row) {
            items.append(engine::FFItem::initWithName(std::to_string(row), 1));
        }
        model_.setItems(items);
        view_.setModel(&model_);
        view_.setItemDelegate(new ui::ItemRowDelegate(
            &view_, [this](const RowPicture& picture, int pixels) { return icons_.load(picture, pixels); }));
        view_.resize(400, 300);
        view_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
        lastShown_ = view_.rowAt(view_.viewport()->height() - 1);
        ASSERT_TRUE(lastShown_ > 5 && lastShown_ < 20);
    }
    void TearDown() override {
        icons_.let.release(manyRows);
        view_.hide();
    }

    [[nodiscard]] QColor shown(int row) {
        const QPoint place = view_.visualRect(model_.index(row, ItemListModel::iconColumn)).center();
        return view_.viewport()->grab().toImage().pixelColor(place * view_.devicePixelRatio());
    }
    bool askedFor(std::size_t count) {
        return runUntil([&] { return icons_.asked().size() >= count; });
    }

    ToldIcons icons_;  // ends after the view, whose thread asks it
    ItemListModel model_{{[](const engine::CleanableItem& item) { return item.ppdisplayName(); },
                          [](const engine::CleanableItem&) { return QString(); },
                          [](const engine::CleanableItem& item) {
                              return RowPicture(QLatin1String("icApp"), RowPicture::Better::ofApplication,
                                                item.ppdisplayName().toStdString());
                          },
                          {},
                          false}};
    ui::TTableView view_;
    int lastShown_ = 0;
};

}  // namespace

TEST_F(RowIcons, AreLoadedForTheRowsOnShowAloneAndOnce) {
    icons_.let.release(manyRows);
    ASSERT_TRUE(runUntil([&] { return shown(0) == colour && shown(lastShown_) == colour; }));
    auto asked = icons_.asked();
    std::sort(asked.begin(), asked.end());
    std::vector<int> rowsOnShow;
    for (int row = 0; row <= lastShown_; ++row) {
        rowsOnShow.push_back(row);
    }
    EXPECT_EQ(asked, rowsOnShow);
    EXPECT_NE(shown(3), colour) << "what has none keeps the general picture";
    view_.viewport()->repaint();
    tests::runPending();
    EXPECT_EQ(icons_.asked().size(), rowsOnShow.size()) << "what has none is known, too";
}

TEST_F(RowIcons, TheLatestQuestionComesFirstAndWhatHasGoneOffTheViewIsGivenUp) {
    ASSERT_TRUE(askedFor(1));
    view_.verticalScrollBar()->setValue(view_.verticalScrollBar()->maximum());
    view_.viewport()->repaint();
    icons_.let.release(manyRows);
    ASSERT_TRUE(runUntil([&] { return shown(manyRows - 1) == colour; }));
    tests::runPending();
    const auto asked = icons_.asked();
    ASSERT_GT(asked.size(), 1U);
    EXPECT_EQ(asked[1], manyRows - 1);
    for (std::size_t index = 1; index < asked.size(); ++index) {
        EXPECT_GT(asked[index], manyRows - 100) << "that row is not on show any more";
    }
}

TEST_F(RowIcons, WhenAListGoesOutOfSightNothingMoreIsLoaded) {
    ASSERT_TRUE(askedFor(1));
    view_.hide();
    icons_.let.release(manyRows);
    QTest::qWait(50);
    EXPECT_EQ(icons_.asked().size(), 1U);
}

TEST_F(RowIcons, WhenOneArrivesItsRowAloneIsDrawnAnew) {
    ASSERT_TRUE(askedFor(1));
    tests::runPending();
    DrawnRows drawn(view_);
    const int row = icons_.asked().front();
    icons_.let.release();
    ASSERT_TRUE(runUntil([&] { return !drawn.rows.empty(); }));
    EXPECT_EQ(drawn.rows.front(), std::pair(row, row));
}

TEST_F(RowIcons, StandOnASelectedRowAsTheyAre) {
    icons_.let.release(manyRows);
    view_.selectRow(2);
    EXPECT_TRUE(runUntil([&] { return shown(2) == colour; }));
}

TEST_F(RowIcons, AreAskedForAnewWhenTheListBeginsAnew) {
    icons_.let.release(manyRows);
    ASSERT_TRUE(runUntil([&] { return shown(0) == colour; }));
    const auto before = icons_.asked();
    QList<ui::ItemListModel::Item> items;
    for (int row = 0; row < model_.rowCount(); ++row) {
        items.append(model_.item(row));
    }
    model_.setItems({});
    model_.setItems(items);
    EXPECT_TRUE(runUntil([&] {
        const auto asked = icons_.asked();
        return std::count(asked.begin(), asked.end(), 0) == 2;
    }));
}
