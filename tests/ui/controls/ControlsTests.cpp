#include <gmock/gmock.h>

#include <QHeaderView>
#include <QMenu>

#include "support/WindowFixture.h"
#include "ui/controls/MCheckCell.h"
#include "ui/controls/Sheet.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

using namespace brimvault;
using trial::Guide;

namespace {

constexpr int languagesRow = 1;
constexpr int logsRow = 2;

bool isTicked(const QModelIndex& check) { return check.data(Qt::CheckStateRole).toInt() == Qt::Checked; }

// Clicks everywhere between the left and the right edge of a place; of each click the box is to change once.
void expectEachClickToTick(QAbstractItemView* view, const QPersistentModelIndex& check, const QRect& place) {
    constexpr int steps = 12;
    constexpr int lines = 2;
    ASSERT_TRUE(place.isValid());
    for (int step = 0; step <= steps * lines; ++step) {
        const QPoint point(place.left() + (place.width() - 1) * (step % (steps + 1)) / steps,
                           place.top() + (place.height() - 1) * (step / steps) / lines);
        const bool before = isTicked(check);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, point);
        ASSERT_NE(isTicked(check), before) << view->accessibleName().toStdString() << " at " << point.x() - place.left()
                                           << " of " << place.width() << ", " << point.y() - place.top();
    }
}

// The rows of a picture, of those columns, that are filled with the colour of a ticked box.
std::pair<int, int> extentOfCheck(const QImage& picture, int left, int right) {
    int first = -1;
    int last = -1;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = left; x < right; ++x) {
            if (picture.pixelColor(x, y) == QColor(0x2e, 0x74, 0xf0)) {
                first = first < 0 ? y : first;
                last = y;
            }
        }
    }
    return {first, last};
}

class ControlsTest : public tests::WindowFixture {
protected:
    [[nodiscard]] QModelIndex section(int row) const { return sections()->model()->index(row, 0); }
    [[nodiscard]] ui::PlashkaView* panel() const { return lists()->plashka(); }
    void pointTo(QWidget* widget, const QPoint& place) {
        QCursor::setPos(widget->mapToGlobal(place));
        QCoreApplication::processEvents();
    }
    [[nodiscard]] bool endsHover() const {
        return Guide::waitFor([this] { return !panel()->isHovered(); });
    }
};

}  // namespace

TEST(ImageLoadTest, APictureStaysWholeWhateverIsLoadedAfterIt) {
    const auto& picture = ui::ImageLoad::LoadPNGImage(QLatin1String("rcheck2"), 2);
    const auto key = picture.cacheKey();
    for (int number = 0; number < 200; ++number) {
        const QByteArray name = "no picture " + QByteArray::number(number);
        EXPECT_TRUE(ui::ImageLoad::LoadPNGImage(QLatin1String(name), 1).isNull());
    }
    EXPECT_EQ(picture.cacheKey(), key);
    EXPECT_EQ(picture.size(), QSize(36, 36));
}

TEST(MCheckCellTest, OneThatIsDisabledDoesNotLookPressed) {
    for (const auto state : {Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked}) {
        ui::MCheckCell check{.state = state};
        const auto rest = check.picture();
        check.highlighted = true;
        EXPECT_EQ(QString(check.picture()), QString(rest) + QStringLiteral("Sel"));
        check.enabled = false;
        EXPECT_EQ(check.picture(), rest);
    }
}

TEST_F(ControlsTest, TheWholeColumnOfAListTicksOncePerClickAtEveryScale) {
    home_.makeApplications();
    start(allScans());
    scan();
    for (const int row : {logsRow, languagesRow}) {
        clickSection(row);
        auto* list = guide_->list();
        const auto check = list->model()->index(1, ui::CheckTableView::checkColumn);
        expectEachClickToTick(list, check, list->visualRect(check));
    }
    Guide::click(window()->pbtnLangs());
    auto* languages = window()->pDrawer()->ptableView();
    ASSERT_TRUE(Guide::waitFor([&] { return languages->isVisible() && languages->width() > 0; }));
    int row = 0;  // some languages always stay
    while (!languages->model()->index(row, 0).flags().testFlag(Qt::ItemIsUserCheckable)) {
        ++row;
    }
    const auto check = languages->model()->index(row, ui::CheckTableView::checkColumn);
    expectEachClickToTick(languages, check, languages->visualRect(check));
}

TEST_F(ControlsTest, TheWholeColumnOfTheSectionListTicksOncePerClickAtEveryScale) {
    start();
    auto* list = sections();
    const QRect column = list->checkRect(section(logsRow));
    EXPECT_EQ(column.top(), list->visualRect(section(logsRow)).top()) << "no gap between the rows";
    EXPECT_EQ(column.left(), list->visualRect(section(logsRow)).left());
    expectEachClickToTick(list, section(logsRow), column);
    EXPECT_EQ(application_->psectController().selectedRow(), 0) << "a tick selects nothing";

    // A press beside the column that ends in it selects.
    const bool before = isSectionChecked(logsRow);
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, list->visualRect(section(logsRow)).center());
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, column.center() - QPoint(column.width() / 3, 0));
    EXPECT_EQ(isSectionChecked(logsRow), before);
}

TEST_F(ControlsTest, CheckBoxesOfSectionsStandInTheMiddleOfTheirRowsAtEveryScale) {
    start();
    const QPixmap shown = sections()->viewport()->grab();
    const qreal density = shown.devicePixelRatio();
    for (const int row : {languagesRow, logsRow}) {
        const QRect place = sections()->visualRect(section(row));
        const QRect column = sections()->checkRect(section(row));
        const QRect pixels((QPointF(place.topLeft()) * density).toPoint(), (QSizeF(place.size()) * density).toSize());
        const auto [first, last] = extentOfCheck(shown.toImage().copy(pixels), 0, qRound(column.width() * density));
        ASSERT_GE(first, 0);
        EXPECT_NEAR(first, pixels.height() - 1 - last, 2 * density) << "above and below";
    }
}

// As bright as the eye sees it, 0 to 1.
static double brightness(const QColor& colour) {
    const auto part = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

TEST_F(ControlsTest, ASectionThatIsNotTickedIsMutedAndCanStillBeRead) {
    start();
    constexpr int downloadsRow = 3;
    // The darkest and the brightest of what is written in a row.
    const auto contrast = [this](int row) {
        const QRect place = sections()->visualRect(section(row)).adjusted(ui::look::scaled(90), 8, -12, -8);
        const QImage text =
            sections()->window()->grab(QRect(sections()->mapTo(window(), place.topLeft()), place.size())).toImage();
        double least = 1;
        double most = 0;
        for (int y = 0; y < text.height(); ++y) {
            for (int x = 0; x < text.width(); ++x) {
                least = std::min(least, brightness(text.pixelColor(x, y)));
                most = std::max(most, brightness(text.pixelColor(x, y)));
            }
        }
        return (most + 0.05) / (least + 0.05);
    };
    constexpr double readable = 4.5;
    const double ticked = contrast(logsRow);
    EXPECT_GT(ticked, 2 * readable);
    clickSectionCheck(logsRow);
    for (const int row : {logsRow, downloadsRow}) {
        EXPECT_LT(contrast(row), ticked * 0.7);
        EXPECT_GE(contrast(row), readable);
    }
    clickSection(downloadsRow);
    EXPECT_GE(contrast(downloadsRow), readable) << "on the ground of a selected row";
}

TEST_F(ControlsTest, TheStatusPanelIsLitWhileThePointerIsOnItAndCanReachIt) {
    start();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    scan();
    const auto light = [this] {
        pointTo(window(), QPoint(2, 2));
        EXPECT_FALSE(panel()->isHovered());
        pointTo(panel(), panel()->rect().center());
        EXPECT_TRUE(panel()->isHovered());
    };
    light();
    pointTo(window(), QPoint(2, 2));
    EXPECT_FALSE(panel()->isHovered());

    light();
    ui::Sheet sheet({300, 200}, window());
    QPushButton answer(sheet.panel());
    sheet.beginSheet(&answer);
    EXPECT_TRUE(endsHover()) << "a sheet";
    sheet.endSheet();

    light();
    application_->menu().popUp();
    EXPECT_TRUE(endsHover()) << "a menu";
    application_->menu().dismiss();

    light();
    QDialog question(window());
    question.setModal(true);
    question.move(window()->mapToGlobal(QPoint(20, 20)));
    question.show();
    EXPECT_TRUE(endsHover()) << "a question";
    question.close();

    light();
    panel()->move(panel()->pos() + QPoint(0, panel()->height()));
    EXPECT_TRUE(endsHover()) << "it has moved";
    panel()->move(panel()->pos() - QPoint(0, panel()->height()));

    light();
    window()->move(window()->pos() + QPoint(panel()->width(), 0));
    EXPECT_TRUE(endsHover()) << "the window has moved";
}
