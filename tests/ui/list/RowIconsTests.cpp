// The icons of rows: which are loaded, when, and what is shown meanwhile.

#include <gmock/gmock.h>

#include <QPaintEvent>
#include <QScrollBar>
#include <QSemaphore>
#include <QTest>
#include <numeric>

#include "engine/model/FFItem.h"
#include "support/EventLoop.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"
#include "ui/list/ItemListModel.h"
#include "ui/list/ItemRowDelegate.h"
#include "ui/list/RowIcons.h"
#include "ui/list/TTableView.h"

using namespace brimvault;
using tests::runUntil;
using ui::ItemListModel;
using ui::RowPicture;

namespace {

constexpr int manyRows = 1000;
const QColor colour(10, 200, 30);

// Notes what it is asked for, and answers when it is let. It has nothing for row 3.
class ToldIcons {
public:
    QImage load(const RowPicture& picture, int pixels) {
        const auto note = [this, row = picture.source.toInt()] { asked.push_back(row); };
        QMetaObject::invokeMethod(&mainThread_, note, Qt::QueuedConnection);
        let.acquire();
        QImage image(pixels, pixels, QImage::Format_ARGB32);
        image.fill(colour);
        return picture.source == "3" ? QImage() : image;
    }

    std::vector<int> asked;
    QSemaphore let;

private:
    QObject mainThread_;
};

// Keeps what part of it is drawn first.
class Drawn final : public QObject {
public:
    explicit Drawn(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* /*object*/, QEvent* event) override {
        if (event->type() == QEvent::Paint && first.isEmpty()) {
            first = static_cast<QPaintEvent*>(event)->region().boundingRect();
        }
        return false;
    }

    QRect first;
};

class RowIcons : public testing::Test {
protected:
    void SetUp() override {
        for (int row = 0; row < manyRows; ++row) {
            items_.append(engine::FFItem::initWithName(std::to_string(row), 1));
        }
        model_.setItems(items_);
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
        return runUntil([&] { return icons_.asked.size() >= count; });
    }

    QList<ItemListModel::Item> items_;
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

TEST(InstalledIcons, AreThoseOfDesktopEntriesInThemesAndOutsideOfThem) {
    const trial::TemporaryFolder folder;
    const auto data = folder / "data";
    const auto write = [&](const char* name, const std::string& icon) {
        trial::writeFile(data / "applications" / (std::string(name) + ".desktop"),
                         "[Desktop Entry]\nType=Application\nName=x\nIcon=" + icon + "\n");
    };
    const auto picture = [](const std::filesystem::path& file) {
        std::filesystem::create_directories(file.parent_path());
        QImage image(48, 48, QImage::Format_ARGB32);
        image.fill(colour);
        EXPECT_TRUE(image.save(QString::fromStdString(file.native())));
    };
    trial::writeFile(data / "icons/hicolor/index.theme",
                     "[Icon Theme]\nName=x\nDirectories=48/apps\n[48/apps]\nSize=48\nContext=Applications\n");
    picture(data / "icons/hicolor/48/apps/org.example.Themed.png");
    picture(data / "pixmaps/unthemed.png");
    picture(folder / "opt/absolute.png");
    write("org.example.Themed", "org.example.Themed");
    write("unthemed", "unthemed");
    write("absolute", (folder / "opt/absolute.png").native());
    write("missing", "no-such-icon");
    const tests::SubstituteHome home(folder / "home",
                                     {{"XDG_DATA_HOME", data}, {"BRIMVAULT_TRIAL_ROOT", folder / "root"}});
    const auto load = ui::RowIcons::installed();
    const auto loaded = [&](const char* identifier) {
        return load(RowPicture(QLatin1String("icFolder"), RowPicture::Better::ofDesktopEntry, identifier), 20);
    };
    for (const char* identifier : {"org.example.Themed", "unthemed", "absolute"}) {
        const QImage image = loaded(identifier);
        ASSERT_EQ(image.size(), QSize(20, 20)) << identifier;
        EXPECT_EQ(image.pixelColor(10, 10), colour) << identifier;
    }
    for (const char* identifier : {"missing", "not-installed", "../applications/absolute"}) {
        EXPECT_TRUE(loaded(identifier).isNull()) << identifier;
    }
}

TEST_F(RowIcons, AreLoadedForTheRowsOnShowAloneAndOnceUntilTheListBeginsAnew) {
    icons_.let.release(2 * manyRows);
    view_.selectRow(2);
    ASSERT_TRUE(runUntil([&] { return shown(0) == colour && shown(lastShown_) == colour; }));
    std::vector<int> rowsOnShow(static_cast<std::size_t>(lastShown_) + 1);
    std::iota(rowsOnShow.begin(), rowsOnShow.end(), 0);
    EXPECT_THAT(icons_.asked, testing::UnorderedElementsAreArray(rowsOnShow));
    EXPECT_NE(shown(3), colour) << "what has none keeps the general picture";
    EXPECT_EQ(shown(2), colour) << "on a selected row as well";
    view_.viewport()->repaint();
    tests::runPending();
    EXPECT_EQ(icons_.asked.size(), rowsOnShow.size()) << "what has none is known, too";
    model_.setItems({});
    model_.setItems(items_);
    EXPECT_TRUE(runUntil([&] { return std::count(icons_.asked.begin(), icons_.asked.end(), 0) == 2; }));
}

TEST_F(RowIcons, TheLatestQuestionComesFirstAndWhatHasGoneOffTheViewIsGivenUp) {
    ASSERT_TRUE(askedFor(1));
    view_.verticalScrollBar()->setValue(view_.verticalScrollBar()->maximum());
    view_.viewport()->repaint();
    icons_.let.release(manyRows);
    ASSERT_TRUE(runUntil([&] { return shown(manyRows - 1) == colour; }));
    tests::runPending();
    const auto asked = icons_.asked;
    ASSERT_GT(asked.size(), 1U);
    EXPECT_EQ(asked[1], manyRows - 1);
    EXPECT_THAT(std::vector(asked.begin() + 1, asked.end()), testing::Each(testing::Gt(manyRows - 100)));
}

TEST_F(RowIcons, WhenAListGoesOutOfSightNothingMoreIsLoaded) {
    ASSERT_TRUE(askedFor(1));
    view_.hide();
    icons_.let.release(manyRows);
    QTest::qWait(50);  // in which several would be
    EXPECT_EQ(icons_.asked.size(), 1U);
}

TEST_F(RowIcons, WhenOneArrivesItsRowAloneIsDrawnAnew) {
    ASSERT_TRUE(askedFor(1));
    tests::runPending();
    Drawn drawn(view_.viewport());
    icons_.let.release();
    ASSERT_TRUE(runUntil([&] { return !drawn.first.isEmpty(); }));
    const int row = icons_.asked.front();
    EXPECT_EQ(std::pair(view_.rowAt(drawn.first.top()), view_.rowAt(drawn.first.bottom())), std::pair(row, row));
}
