#include <gmock/gmock.h>

#include <QIcon>
#include <QImage>

#include "support/WindowFixture.h"

using namespace brimvault;
using trial::Guide;
using ui::ItemListModel;

namespace {

constexpr int languagesRow = 1;
constexpr int downloadsRow = 3;

class IconJourney : public tests::WindowFixture {
protected:
    /// The colour in the middle of the row's icon.
    [[nodiscard]] QColor shown(const char* name) const {
        const auto index = guide_->list()->model()->index(guide_->row(QLatin1String(name)), ItemListModel::iconColumn);
        const QImage view = guide_->list()->viewport()->grab().toImage();
        return view.pixelColor(guide_->list()->visualRect(index).center() * view.devicePixelRatio());
    }
    [[nodiscard]] bool comes(const char* name, const QColor& colour) const {
        return Guide::waitFor([&] { return shown(name) == colour; });
    }
};

}  // namespace

TEST_F(IconJourney, EachApplicationShowsItsOwn) {
    home_.makeApplications();
    std::filesystem::remove(home_.applications() / "Notes.app/Contents/Resources" / trial::SampleHome::iconName);
    start(allScans());
    clickSection(languagesRow);
    scan();
    EXPECT_TRUE(comes("Office Writer", QColor(0x5B, 0x8D, 0xEF)));
    EXPECT_TRUE(comes("Chess", QColor(0x7A, 0x87, 0x98)));
    EXPECT_TRUE(comes("Video Player", QColor(0xE5, 0x60, 0x4F)));
    const QColor general = shown("Notes");
    EXPECT_NE(general, QColor(0xF2, 0xB9, 0x3B));
    guide_->clickCell(guide_->row(QStringLiteral("Chess")), ItemListModel::nameColumn);
    EXPECT_EQ(shown("Chess"), QColor(0x7A, 0x87, 0x98)) << "on a selected row as well";
}

// The desktop's icons are a matter of the desktop: these are a theme of one.
TEST_F(IconJourney, AFileShowsTheDesktopsIconOfItsTypeWhereThereIsOne) {
    trial::writeFile(folder_ / "icons/Trial/index.theme",
                     "[Icon Theme]\nName=Trial\nDirectories=types\n[types]\nSize=24\nContext=MimeTypes\n");
    std::filesystem::create_directories(folder_ / "icons/Trial/types");
    QImage icon(24, 24, QImage::Format_RGB32);
    icon.fill(Qt::magenta);
    ASSERT_TRUE(icon.save(QString::fromStdString(folder_ / "icons/Trial/types/package-x-generic.png")));
    const auto before = std::pair(QIcon::themeName(), QIcon::themeSearchPaths());
    QIcon::setThemeSearchPaths({QString::fromStdString(folder_ / "icons")});
    QIcon::setThemeName(QStringLiteral("Trial"));
    std::filesystem::create_directory(home_.downloads() / "folder.zip");
    trial::writeFile(home_.downloads() / "folder.zip/file", "in a folder that is called like an archive");

    start(allScans());
    clickSectionCheck(downloadsRow);
    clickSection(downloadsRow);
    scan();
    EXPECT_TRUE(comes("photos.zip", Qt::magenta));
    EXPECT_NE(shown("invoice.txt"), QColor(Qt::magenta));
    EXPECT_NE(shown("folder.zip"), QColor(Qt::magenta)) << "a folder looks like a folder";
    QIcon::setThemeSearchPaths(before.second);
    QIcon::setThemeName(before.first);
}
