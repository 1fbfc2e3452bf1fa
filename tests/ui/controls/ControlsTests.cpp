#include <QBitmap>
#include <QDialog>

#include "support/WindowFixture.h"
#include "ui/controls/MCheckCell.h"
#include "ui/controls/Sheet.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

namespace brimvault::tests {

namespace {

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

// As bright as the eye sees it, 0 to 1.
double brightness(const QColor& colour) {
    const auto part = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

class ControlsTest : public WindowFixture {
protected:
    [[nodiscard]] QModelIndex section(int row) const { return sections()->model()->index(row, 0); }
    // Between the darkest and the brightest of what is written in a row.
    [[nodiscard]] double contrast(int row) const {
        const QRect place = sections()->visualRect(section(row)).adjusted(ui::look::scaled(90), 8, -12, -8);
        const QRect inWindow(sections()->mapTo(window(), place.topLeft()), place.size());
        const QImage text = window()->grab(inWindow).toImage();
        double least = 1;
        double most = 0;
        for (int pixel = 0; pixel < text.width() * text.height(); ++pixel) {
            const double bright = brightness(text.pixelColor(pixel % text.width(), pixel / text.width()));
            least = std::min(least, bright);
            most = std::max(most, bright);
        }
        return (most + 0.05) / (least + 0.05);
    }
};

}  // namespace

TEST(ImageLoadTest, APictureIsThereForEachDensityAndNullWithoutAFile) {
    EXPECT_EQ(ui::ImageLoad::LoadPNGImage(QLatin1String("rcheck2"), 1).size(), QSize(18, 18));
    EXPECT_EQ(ui::ImageLoad::LoadPNGImage(QLatin1String("rcheck2"), 1.5).size(), QSize(36, 36));
    EXPECT_TRUE(ui::ImageLoad::LoadPNGImage(QLatin1String("no picture"), 1).isNull());
}

TEST(MCheckCellTest, OneThatIsDisabledDoesNotLookPressed) {
    for (const auto state : {Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked}) {
        ui::MCheckCell check{.state = state};
        const auto rest = check.picture();
        check.highlighted = true;
        EXPECT_EQ(QString(check.picture()), QString(rest) + u"Sel"_s);
        check.enabled = false;
        EXPECT_EQ(check.picture(), rest);
    }
}

TEST_F(ControlsTest, TheWholeColumnOfEachListTicksOncePerClickAtEveryScale) {
    home_.makeApplications();
    start(allScans());
    scan();
    const auto expectColumn = [](QAbstractItemView* list) {
        const auto check = list->model()->index(1, ui::CheckTableView::checkColumn);
        expectEachClickToTick(list, check, list->visualRect(check));
    };
    for (const int row : {logsRow, languagesRow}) {
        clickSection(row);
        expectColumn(guide_->list());
    }
    Guide::click(window()->pbtnLangs());
    auto* languages = window()->pDrawer()->ptableView();
    ASSERT_TRUE(Guide::waitFor([&] { return languages->isVisible() && languages->width() > 0; }));
    expectColumn(languages);

    auto* list = sections();
    const QRect row = list->visualRect(section(logsRow));
    const QRect column = list->checkRect(section(logsRow));
    EXPECT_EQ(column.topLeft(), row.topLeft()) << "no gap between the rows";
    expectEachClickToTick(list, section(logsRow), column);
    EXPECT_EQ(application_->psectController().selectedRow(), languagesRow) << "a tick selects nothing";
    const QPoint within = column.center() - QPoint(column.width() / 3, 0);
    const bool before = isSectionChecked(logsRow);
    for (const auto& [pressed, released] : {std::pair(within, row.center()), std::pair(row.center(), within)}) {
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, pressed);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, released);
        EXPECT_EQ(isSectionChecked(logsRow), before) << "a click in part only";
    }
}

TEST_F(ControlsTest, CheckBoxesOfSectionsStandInTheMiddleOfTheirRowsAtEveryScale) {
    start();
    const QPixmap shown = sections()->viewport()->grab();
    const qreal density = shown.devicePixelRatio();
    for (const int row : {languagesRow, logsRow}) {
        const QRect place = sections()->visualRect(section(row));
        const QSize size = (QSizeF(sections()->checkRect(section(row)).width(), place.height()) * density).toSize();
        const QImage column = shown.toImage().copy({(QPointF(place.topLeft()) * density).toPoint(), size});
        const auto ticked = column.createMaskFromColor(qRgb(0x2e, 0x74, 0xf0));
        const QRect box = QRegion(QBitmap::fromImage(ticked)).boundingRect();
        ASSERT_FALSE(box.isEmpty());
        EXPECT_NEAR(box.top(), column.height() - 1 - box.bottom(), 2 * density) << "above and below";
    }
}

TEST_F(ControlsTest, ASectionThatIsNotTickedIsMutedAndCanStillBeRead) {
    start();
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
    auto* panel = lists()->plashka();
    ui::Sheet sheet({300, 200}, window());
    QPushButton answer(sheet.panel());
    QDialog question(window());
    question.setModal(true);
    question.move(window()->mapToGlobal(QPoint(20, 20)));
    const auto pointTo = [](const QWidget* widget, const QPoint& place) {
        QCursor::setPos(widget->mapToGlobal(place));
        QCoreApplication::processEvents();
    };
    const auto move = [](QWidget* widget, int right, int down) { widget->move(widget->pos() + QPoint(right, down)); };
    const struct {
        const char* what;
        std::function<void()> begin, end;
    } obstacles[] = {
        {"the pointer has gone", [&] { pointTo(window(), QPoint(2, 2)); }, [] {}},
        {"a sheet", [&] { sheet.beginSheet(&answer); }, [&] { sheet.endSheet(); }},
        {"a menu", [&] { application_->menu().popUp(); }, [&] { application_->menu().dismiss(); }},
        {"a question", [&] { question.show(); }, [&] { question.close(); }},
        {"it has moved", [&] { move(panel, 0, panel->height()); }, [&] { move(panel, 0, -panel->height()); }},
        {"the window has moved", [&] { move(window(), panel->width(), 0); }, [] {}},
    };
    for (const auto& [what, begin, end] : obstacles) {
        SCOPED_TRACE(what);
        pointTo(window(), QPoint(2, 2));
        EXPECT_FALSE(panel->isHovered());
        pointTo(panel, panel->rect().center());
        EXPECT_TRUE(panel->isHovered());
        begin();
        EXPECT_TRUE(Guide::waitFor([&] { return !panel->isHovered(); }));
        end();
    }
}

}  // namespace brimvault::tests
