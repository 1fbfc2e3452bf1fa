// The pictures of the rows, by the colour in the middle of each.

#include <QIcon>
#include <QImage>

#include "support/WindowFixture.h"

namespace brimvault::tests {

using namespace rows;

class IconJourney : public WindowFixture {
protected:
    [[nodiscard]] QColor shown(const QString& name) const {
        const QImage view = guide_->list()->viewport()->grab().toImage();
        const QPoint middle = guide_->list()->visualRect(cell(name, ItemListModel::iconColumn)).center();
        return view.pixelColor(middle * view.devicePixelRatio());
    }
    [[nodiscard]] bool comes(const QString& name, const QColor& colour) const {
        return Guide::waitFor([&] { return shown(name) == colour; });
    }
};

// The desktop's icons are a matter of the desktop: these are a theme of one.
TEST_F(IconJourney, ApplicationsShowTheirOwnAndFilesTheDesktopsIconOfTheirTypeWhereThereIsOne) {
    writeFile(folder_ / "icons/Trial/index.theme",
              "[Icon Theme]\nName=Trial\nDirectories=types\n[types]\nSize=24\nContext=MimeTypes\n");
    fs::create_directories(folder_ / "icons/Trial/types");
    QImage icon(24, 24, QImage::Format_RGB32);
    icon.fill(Qt::magenta);
    ASSERT_TRUE(icon.save(shownPath(folder_ / "icons/Trial/types/package-x-generic.png")));
    const auto before = std::pair(QIcon::themeName(), QIcon::themeSearchPaths());
    QIcon::setThemeSearchPaths({shownPath(folder_ / "icons")});
    QIcon::setThemeName(u"Trial"_s);
    writeFile(home_.downloads() / "folder.zip/file", "in a folder that is called like an archive");
    home_.makeApplications();
    fs::remove(home_.applications() / "Notes.app/Contents/Resources" / SampleHome::iconName);

    start(allScans());
    clickSectionCheck(downloadsRow);
    scan();
    show(downloadsRow);
    EXPECT_TRUE(comes(u"photos.zip"_s, Qt::magenta));
    EXPECT_NE(shown(u"invoice.txt"_s), QColor(Qt::magenta));
    EXPECT_NE(shown(u"folder.zip"_s), QColor(Qt::magenta)) << "a folder looks like a folder";
    show(languagesRow);
    EXPECT_TRUE(comes(u"Office Writer"_s, QColor(0x5B, 0x8D, 0xEF)));
    EXPECT_TRUE(comes(u"Chess"_s, QColor(0x7A, 0x87, 0x98)));
    EXPECT_NE(shown(u"Notes"_s), QColor(0xF2, 0xB9, 0x3B)) << "its own is missing";
    select(u"Chess"_s);
    EXPECT_EQ(shown(u"Chess"_s), QColor(0x7A, 0x87, 0x98)) << "on a selected row as well";
    QIcon::setThemeSearchPaths(before.second);
    QIcon::setThemeName(before.first);
}

}  // namespace brimvault::tests
