// Scan, review and clean, and what the window shows of it.

#include <QScrollBar>
#include <QTextDocument>
#include <thread>

#include "support/WindowFixture.h"

namespace brimvault::tests {

class WindowJourney : public WindowFixture {
protected:
    /// Of all that the section holds before anything is cleaned.
    quint64 total() const {
        return std::accumulate(entries_.begin(), entries_.end(), quint64{0},
                               [](quint64 sum, const auto& entry) { return sum + entry.size; });
    }

    /// The colour in the middle of the row's picture.
    [[nodiscard]] QColor shown(const QString& name) const {
        const QImage view = guide_->list()->viewport()->grab().toImage();
        const QPoint middle = guide_->list()->visualRect(cell(name, ItemListModel::iconColumn)).center();
        return view.pixelColor(middle * view.devicePixelRatio());
    }
    [[nodiscard]] bool comes(const QString& name, const QColor& colour) const {
        return Guide::waitFor([&] { return shown(name) == colour; });
    }

    const std::vector<SampleHome::Entry> entries_ = home_.cachesSection();
    const QString photos_ = u"com.vendor.photos"_s;
};

TEST_F(WindowJourney, ScanReviewClean) {
    const auto outside = fingerprint(home_.path(), {"Library/Caches", "Library/Containers"});
    start();
    EXPECT_TRUE(window()->startPage()->isVisible());
    ASSERT_TRUE(guide_->scan(window()->startPage()->btnStartScanButton2()));

    // Review: everything that holds something is listed, ticked, with its size.
    QStringList expected;
    quint64 photosSize = 0;
    for (const auto& entry : entries_) {
        const QString name = QString::fromStdString(entry.name);
        photosSize = name == photos_ ? entry.size : photosSize;
        if (entry.size != 0) {
            expected.append(name);
            ASSERT_GE(guide_->row(name), 0) << entry.name;
            EXPECT_TRUE(isChecked(name)) << entry.name;
            EXPECT_EQ(cell(name, ItemListModel::sizeColumn).data().toString(), sizeText(entry.size));
        }
    }
    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(status(), sizeText(total()) + u", Selected of "_s + sizeText(total()));
    EXPECT_EQ(selectAllState(), Qt::Checked);

    clickCheckOf(photos_);
    const quint64 selectedSize = total() - photosSize;
    EXPECT_EQ(subtitle(cachesRow), u"%1 of %2 Selected"_s.arg(sizeText(selectedSize), sizeText(total())));
    clean();
    EXPECT_EQ(names(), QStringList{photos_});
    EXPECT_EQ(status(), u"%1 cleaned, %1 cleaned in total"_s.arg(sizeText(selectedSize)));
    EXPECT_EQ(cleanedInTotal(), selectedSize);
    EXPECT_EQ(defaults_->number(ui::defaults_key::cleanNumber), 1U);

    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(caches())) {
        left.push_back(entry.path().filename());
    }
    EXPECT_THAT(left, testing::UnorderedElementsAre(photos_.toStdString(), SampleHome::hiddenName));
    EXPECT_EQ(fingerprint(home_.path(), {"Library/Caches", "Library/Containers"}), outside);
}

TEST_F(WindowJourney, TicksOfItemsOfAllAndOfTheSectionFollowEachOther) {
    startAndScan();
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled());
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled());
    EXPECT_TRUE(status().startsWith(u"Zero Bytes, "_s));
    EXPECT_TRUE(isSectionChecked(cachesRow)) << "emptying a list leaves its section ticked";
    guide_->clickCell(0, ItemListModel::checkColumn);
    EXPECT_EQ(selectAllState(), Qt::PartiallyChecked);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(selectAllState(), Qt::Checked) << "a mixed state becomes all";

    clickSectionCheck(cachesRow);
    EXPECT_FALSE(isSectionChecked(cachesRow));
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled()) << "nothing of a section that is not ticked is cleaned";
    guide_->clickCell(0, ItemListModel::checkColumn);
    EXPECT_FALSE(isSectionChecked(cachesRow));
    guide_->clickCell(0, ItemListModel::checkColumn);
    EXPECT_TRUE(isSectionChecked(cachesRow));
}

TEST_F(WindowJourney, ACleanSelectsNothingAndKeepsTheListWhereItWas) {
    for (int number = 0; number < 100; ++number) {
        writeFile(caches() / ("item " + std::to_string(number)), "12345");
    }
    startAndScan();
    Guide::click(lists()->pbtnSelectAll());
    for (const QString& name : {u"item 3"_s, u"com.vendor.browser"_s}) {
        clickCheckOf(name);
    }
    guide_->list()->clearSelection();
    guide_->list()->verticalScrollBar()->setValue(0);
    clean();
    EXPECT_EQ(names().size(), 100 + static_cast<qsizetype>(entries_.size()) - 3) << "one entry is empty";
    EXPECT_EQ(selected(), QString());
    EXPECT_TRUE(guide_->list()->currentIndex().isValid());
    EXPECT_EQ(guide_->list()->verticalScrollBar()->value(), 0);
}

TEST_F(WindowJourney, APressedCheckBoxStaysWithItsItemWhenRowsMove) {
    startAndScan();
    const int row = guide_->row(photos_);
    const QPoint place = guide_->list()->visualRect(cell(photos_, ItemListModel::checkColumn)).center();
    QTest::mousePress(guide_->list()->viewport(), Qt::LeftButton, {}, place);
    guide_->list()->model()->sort(ItemListModel::nameColumn, Qt::DescendingOrder);
    ASSERT_NE(guide_->row(photos_), row);
    QTest::mouseRelease(guide_->list()->viewport(), Qt::LeftButton, {}, place);
    for (const QString& name : names()) {
        EXPECT_TRUE(isChecked(name)) << name.toStdString() << " was not under the button when it was pressed";
    }
}

TEST_F(WindowJourney, OddNamesAreShownOnOneLineAndAsTheyAreAndRemovedExactly) {
    removeTree(caches());
    removeTree(home_.containers());
    const std::string markup = "<b>bold &amp; <br>";
    writeFile(caches() / markup, "12345");
    writeFile(caches() / "line\nbreak \xff\xfe end", "12345");
    startAndScan();
    const QString oneLine = u"line%1break %1%1 end"_s.arg(QChar(QChar::ReplacementCharacter));
    EXPECT_THAT(names(), testing::UnorderedElementsAre(oneLine, QString::fromStdString(markup)));
    QTextDocument tooltip;
    tooltip.setHtml(cell(QString::fromStdString(markup), 0).data(Qt::ToolTipRole).toString());
    EXPECT_EQ(tooltip.toPlainText(), shownPath(caches() / markup));
    clean();
    EXPECT_TRUE(fs::is_empty(caches()));
}

TEST_F(WindowJourney, TheStatusPanelTellsByTurnsWhatIsSelectedAndWhatWasCleaned) {
    startAndScan();
    const QString sizes = status();
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), u"Select files to clean"_s);
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), sizes);
    clean();
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), u"Zero Bytes, Selected of 0 B"_s);
    quit();
    startAndScan();
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), u"%1 cleaned before"_s.arg(sizeText(total()))) << "not in this run";
}

TEST_F(WindowJourney, TheSelectedItemStaysSelectedAndItsNeighbourTakesItsPlace) {
    startAndScan();
    guide_->clickHeader(ItemListModel::nameColumn);  // from Z
    select(photos_);
    guide_->clickHeader(ItemListModel::sizeColumn);
    EXPECT_EQ(selected(), photos_);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(selected(), photos_);

    // Of those above it one stays.
    const QStringList before = names();
    select(before.at(5));
    for (int row = 1; row <= 5; ++row) {
        clickCheckOf(before.at(row));
    }
    clean();
    EXPECT_EQ(names(), before.first(1) + before.mid(6));
    EXPECT_EQ(selected(), before.at(6));
}

TEST_F(WindowJourney, WhereALinkLeadsAndWhyAFolderIsNotLookedIntoIsSaid) {
    fs::rename(caches(), folder_ / "disk");
    fs::create_directory_symlink(folder_ / "disk", caches());
    startAndScan();
    const QString disk = shownPath(folder_ / "disk");
    EXPECT_TRUE(isSaid(u"which leads to "_s + disk));
    EXPECT_TRUE(ofSection(cachesRow, Qt::ToolTipRole).contains(disk));
    EXPECT_GE(guide_->row(QString::fromLatin1(SampleHome::plainFileName)), 0);

    fs::remove(caches());
    fs::remove_all(home_.containers());
    fs::create_directory_symlink(home_.documents(), caches());
    scan();
    const auto reason = u"it is a folder for your own files"_s;
    EXPECT_EQ(guide_->list(), nullptr);
    EXPECT_EQ(subtitle(cachesRow), u"No files found"_s);
    EXPECT_TRUE(isSaid(reason));
    EXPECT_TRUE(ofSection(cachesRow, Qt::ToolTipRole).contains(reason));
    EXPECT_TRUE(ofSection(cachesRow, Qt::AccessibleDescriptionRole).contains(reason));

    fs::remove(caches());
    scan();
    EXPECT_TRUE(isSaid(u"No files found"_s));
    EXPECT_FALSE(isSaid(reason)) << "a missing folder is none that is not looked into";
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled());
}

// The desktop's icons are a matter of the desktop: these are a theme of one.
TEST_F(WindowJourney, ApplicationsShowTheirOwnAndFilesTheDesktopsIconOfTheirTypeWhereThereIsOne) {
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

TEST_F(WindowJourney, AnItemWithoutAPathLiesInTheFolderOfItsSectionWhichTheMainThreadNeverLooksUp) {
    std::atomic<int> lookedUpHere = 0;
    const auto homeFolder = [&, mainThread = std::this_thread::get_id()] {
        lookedUpHere += std::this_thread::get_id() == mainThread ? 1 : 0;
        return std::optional(home_.path());
    };
    const platform::SubstituteSystem system{
        {homeFolder, [] { return std::string("trial"); }, [](const char*) { return std::string(); }}};
    EXPECT_EQ(&ui::UtilMod::sharedUtil(), &util_);
    const auto item = engine::FFItem::initWithName("found", 1);
    util_.lookUpFolders();
    ASSERT_TRUE(Guide::waitFor([&] { return !util_.getFullCachePathToItem(*item).empty(); }));
    EXPECT_EQ(util_.getFullCachePathToItem(*item), caches() / "found");
    EXPECT_EQ(util_.getFullDownloadPathToItem(*item), home_.downloads() / "found");
    EXPECT_EQ(util_.getFullTrashPathToItem(*item), home_.trash() / "found");
    EXPECT_EQ(lookedUpHere, 0);
}

}  // namespace brimvault::tests
