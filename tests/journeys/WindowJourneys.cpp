#include <gmock/gmock.h>

#include <QScrollBar>
#include <QTextDocument>
#include <filesystem>
#include <fstream>
#include <semaphore>

#include "engine/model/FileSize.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "scanners/ScanBatches.h"
#include "support/WindowFixture.h"
#include "ui/services/DefaultsKeys.h"

namespace fs = std::filesystem;

using namespace brimvault;
using engine::FileSize;
using trial::Guide;

namespace {

constexpr int logsRow = 2;
const QString photos = QStringLiteral("com.vendor.photos");

QString sizeText(quint64 bytes) { return FileSize::formatMemoryStringDot1(bytes); }

// A scan of Caches that finds one item and then waits to be let on, or to be cancelled.
class HeldScan final : public engine::SBaseOperation {
public:
    explicit HeldScan(std::counting_semaphore<>& letOn) : SBaseOperation(engine::Section::caches), letOn_(letOn) {}

protected:
    void main() override {
        scanners::ScanBatches batches(section(), 2);
        const auto item = engine::FFItem::initWithName("found", 1000);
        item->setPpbDeletable(true);
        batches.step();
        batches.add(item);
        batches.step();
        while (!isCancelled() && !letOn_.try_acquire_for(std::chrono::milliseconds(5))) {
        }
        batches.sendOperationCompleted();
    }

private:
    std::counting_semaphore<>& letOn_;
};

class WindowJourney : public tests::WindowFixture {
protected:
    engine::ScanTable heldScans() {
        engine::ScanTable table;
        table.operations[engine::Section::caches] = [this] { return std::make_shared<HeldScan>(letOn_); };
        return table;
    }
    /// Of all that the section holds before anything is cleaned.
    quint64 total() const {
        quint64 sum = 0;
        for (const auto& entry : entries_) {
            sum += entry.size;
        }
        return sum;
    }
    quint64 sizeOf(const QString& name) const {
        for (const auto& entry : entries_) {
            if (entry.name == name.toStdString()) {
                return entry.size;
            }
        }
        return 0;
    }

    const std::vector<trial::SampleHome::Entry> entries_ = home_.cachesSection();

    std::counting_semaphore<> letOn_{0};
};

TEST_F(WindowJourney, ScanReviewClean) {
    const auto outside = trial::fingerprint(home_.path(), {"Library/Caches", "Library/Containers"});
    start();
    EXPECT_TRUE(window()->startPage()->isVisible());
    ASSERT_TRUE(guide_->scan(window()->startPage()->btnStartScanButton2()));

    // Review: everything that holds something is listed, ticked, with its size.
    QStringList expected;
    for (const auto& entry : entries_) {
        if (entry.size != 0) {
            const QString name = QString::fromStdString(entry.name);
            expected.append(name);
            const int row = guide_->row(name);
            ASSERT_GE(row, 0) << entry.name;
            EXPECT_TRUE(isChecked(name)) << entry.name;
            EXPECT_EQ(guide_->list()->model()->index(row, ui::ItemListModel::sizeColumn).data().toString(),
                      sizeText(entry.size));
        }
    }
    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(status(), sizeText(total()) + QStringLiteral(", Selected of ") + sizeText(total()));
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Checked);

    guide_->clickCell(guide_->row(photos), ui::ItemListModel::checkColumn);
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::PartiallyChecked);
    const quint64 selected = total() - sizeOf(photos);
    EXPECT_EQ(subtitle(0), QStringLiteral("%1 of %2 Selected").arg(sizeText(selected), sizeText(total())));

    clean();
    EXPECT_EQ(alerts_.asked.back().message,
              QStringLiteral("Are you sure you want to  completely delete the selected items?"));
    EXPECT_EQ(names(), QStringList{photos});
    EXPECT_EQ(status(), QStringLiteral("%1 cleaned, %1 cleaned in total").arg(sizeText(selected)));
    EXPECT_EQ(defaults_->number(ui::defaults_key::totalCleanedSize), selected);
    EXPECT_EQ(defaults_->number(ui::defaults_key::cleanNumber), 1U);

    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(caches())) {
        left.push_back(entry.path().filename());
    }
    EXPECT_THAT(left, testing::UnorderedElementsAre(photos.toStdString(), trial::SampleHome::hiddenName));
    EXPECT_EQ(trial::fingerprint(home_.path(), {"Library/Caches", "Library/Containers"}), outside);
}

TEST_F(WindowJourney, WithNothingSelectedThereIsNothingToClean) {
    start();
    scan();
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled());
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled());
    EXPECT_TRUE(status().startsWith(QStringLiteral("Zero Bytes, ")));
    EXPECT_TRUE(isSectionChecked(0)) << "emptying a list leaves its section ticked";
    guide_->clickCell(0, ui::ItemListModel::checkColumn);
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::PartiallyChecked);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(lists()->pbtnSelectAll()->checkState(), Qt::Checked) << "a mixed state becomes all";
}

TEST_F(WindowJourney, TickingAnItemTicksItsSection) {
    start();
    scan();
    clickSectionCheck(0);
    EXPECT_FALSE(isSectionChecked(0));
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled()) << "nothing of a section that is not ticked is cleaned";
    guide_->clickCell(0, ui::ItemListModel::checkColumn);
    EXPECT_FALSE(isSectionChecked(0));
    guide_->clickCell(0, ui::ItemListModel::checkColumn);
    EXPECT_TRUE(isSectionChecked(0));
}

TEST_F(WindowJourney, ACancelledQuestionRemovesNothingButRemembersNotToAsk) {
    const auto before = trial::fingerprint(home_.path());
    start();
    scan();
    alerts_.answers.push_back({ui::AlertAnswer::secondButton, true});
    Guide::click(lists()->pbtnClean());
    EXPECT_FALSE(application_->pbCleanning());
    EXPECT_EQ(trial::fingerprint(home_.path()), before);
    Guide::click(lists()->pbtnClean());
    EXPECT_EQ(alerts_.asked.size(), 1U) << "it was told not to ask again";
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    EXPECT_FALSE(fs::exists(caches() / photos.toStdString()));
}

TEST_F(WindowJourney, NothingBeginsWhileAQuestionIsOpen) {
    start();
    scan();
    guide_->clickCell(guide_->row(photos), ui::ItemListModel::checkColumn);
    alerts_.whileOpen = [this] {
        application_->psectController().doStartScan();
        application_->psectController().doStartClean();
        EXPECT_FALSE(application_->pbScanning());
        EXPECT_FALSE(application_->pbCleanning());
    };
    clean();
    EXPECT_EQ(alerts_.asked.size(), 1U);
    EXPECT_TRUE(fs::exists(caches() / photos.toStdString())) << "it was unticked";
}

TEST_F(WindowJourney, ACleanSelectsNothingAndKeepsTheListWhereItWas) {
    for (int number = 0; number < 100; ++number) {
        trial::writeFile(caches() / ("item " + std::to_string(number)), "12345");
    }
    start();
    scan();
    guide_->clickHeader(ui::ItemListModel::nameColumn);
    guide_->clickHeader(ui::ItemListModel::nameColumn);
    Guide::click(lists()->pbtnSelectAll());
    for (const char* name : {"item 3", "com.vendor.browser"}) {
        guide_->clickCell(guide_->row(QString::fromLatin1(name)), ui::ItemListModel::checkColumn);
    }
    guide_->list()->clearSelection();
    guide_->list()->verticalScrollBar()->setValue(0);
    clean();
    EXPECT_EQ(names().size(), 100 + static_cast<qsizetype>(entries_.size()) - 3) << "one entry is empty";
    EXPECT_TRUE(guide_->list()->selectionModel()->selectedRows().isEmpty());
    EXPECT_TRUE(guide_->list()->currentIndex().isValid());
    EXPECT_EQ(guide_->list()->verticalScrollBar()->value(), 0);
}

TEST_F(WindowJourney, APressedCheckBoxStaysWithItsItemWhenRowsMove) {
    start();
    scan();
    const int row = guide_->row(photos);
    const QRect place = guide_->list()->visualRect(guide_->list()->model()->index(row, ui::ItemListModel::checkColumn));
    QTest::mousePress(guide_->list()->viewport(), Qt::LeftButton, {}, place.center());
    guide_->list()->model()->sort(ui::ItemListModel::nameColumn, Qt::DescendingOrder);
    ASSERT_NE(guide_->row(photos), row);
    QTest::mouseRelease(guide_->list()->viewport(), Qt::LeftButton, {}, place.center());
    for (const QString& name : names()) {
        EXPECT_TRUE(isChecked(name)) << name.toStdString() << " was not under the button when it was pressed";
    }
}

TEST_F(WindowJourney, TooltipsShowNamesThatLookLikeMarkupAsTheyAre) {
    const std::string markup = "<b>bold &amp; <br>";
    trial::writeFile(caches() / markup, "12345");
    start();
    scan();
    const auto index = guide_->list()->model()->index(guide_->row(QString::fromStdString(markup)), 0);
    const QString tooltip = index.data(Qt::ToolTipRole).toString();
    QTextDocument document;
    document.setHtml(tooltip);
    EXPECT_EQ(document.toPlainText(), QString::fromStdString((caches() / markup).native()));
}

TEST_F(WindowJourney, TheStatusPanelTellsWhatWasCleanedInThisRunOnly) {
    start();
    scan();
    clean();
    const QString freed = sizeText(total());
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), QStringLiteral("Zero Bytes, Selected of 0 B"));
    quit();
    start();
    scan();
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), QStringLiteral("%1 cleaned before").arg(freed));
}

TEST_F(WindowJourney, TheStatusPanelOfAFirstRunAsksToSelect) {
    start();
    scan();
    Guide::click(lists()->plashka());
    EXPECT_EQ(status(), QStringLiteral("Select files to clean"));
    Guide::click(lists()->plashka());
    EXPECT_TRUE(status().endsWith(QStringLiteral(", Selected of ") + sizeText(total())));
}

TEST_F(WindowJourney, WhatCannotBeRemovedStaysListedWithItsReason) {
    start();
    scan();
    // A failure that the administrator meets too: the way to the items has become a link.
    const fs::path moved = home_.path() / "Library" / "Moved";
    fs::rename(caches(), moved);
    fs::create_directory_symlink(moved, caches());
    clean();
    EXPECT_TRUE(fs::exists(moved / photos.toStdString())) << "nothing is removed through a link";
    EXPECT_GE(guide_->row(photos), 0);
    const auto& reasons = application_->notCleaned().files[engine::Section::caches];
    EXPECT_EQ(reasons.value(photos), QStringLiteral("Not a directory"));
    EXPECT_FALSE(defaults_->number(ui::defaults_key::totalCleanedSize).value_or(0) > total() / 2);
}

TEST_F(WindowJourney, AStoppedScanKeepsWhatItFoundAndCanBeStartedAgain) {
    start(heldScans());
    Guide::click(scanButton());
    EXPECT_TRUE(application_->pbScanning());
    EXPECT_EQ(scanButton()->accessibleName(), QStringLiteral("Stop Scanning"));
    ASSERT_TRUE(Guide::waitFor([this] { return guide_->list() != nullptr; }));
    clickSectionCheck(0);
    EXPECT_TRUE(isSectionChecked(0)) << "check boxes rest while a scan runs";

    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "the controls are back at once";
    EXPECT_EQ(scanButton()->accessibleName(), QStringLiteral("Scan"));
    Guide::click(scanButton());
    EXPECT_TRUE(application_->pbScanning());
    QTest::qWait(100);
    EXPECT_TRUE(application_->pbScanning()) << "the end of the first scan is not that of the second";
    letOn_.release();
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning(); }));
    EXPECT_EQ(names(), QStringList{QStringLiteral("found")});
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled());
}

TEST_F(WindowJourney, ClosingDuringAScanWaitsForItsReturn) {
    start(heldScans());
    Guide::click(scanButton());
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(window()->isVisible());
    EXPECT_FALSE(window()->isEnabled());
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
    EXPECT_FALSE(application_->isScanReturning());
}

TEST_F(WindowJourney, ClosingDuringACleanRecordsWhatItFreed) {
    start();
    scan();
    // The clean is held at its end until the window has been asked to close.
    std::binary_semaphore asked{0};
    const auto held = engine::NotificationCenter::defaultCenter().addObserver(
        engine::vocabulary(engine::Section::caches).cleanFinished, [&](const auto&) { asked.acquire(); });
    alerts_.answers.push_back(tests::agree);
    Guide::click(lists()->pbtnClean());
    ASSERT_TRUE(application_->pbCleanning());
    EXPECT_FALSE(window()->close());
    asked.release();
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
    quint64 left = 0;
    for (const auto& item : application_->psectController().getAppResDS().getCachesArray()) {
        left += item->pfSize();
        EXPECT_TRUE(item->pfSize() == 0 || fs::exists(fs::symlink_status(item->pfpath()))) << item->pfpath();
    }
    EXPECT_EQ(defaults_->number(ui::defaults_key::totalCleanedSize).value_or(0), total() - left);
}

TEST_F(WindowJourney, TheSelectedItemStaysSelectedAndItsNeighbourTakesItsPlace) {
    start();
    scan();
    guide_->clickHeader(ui::ItemListModel::nameColumn);  // from Z
    guide_->clickCell(guide_->row(photos), ui::ItemListModel::nameColumn);
    const auto selectedName = [this] {
        const auto rows = guide_->list()->selectionModel()->selectedRows(ui::ItemListModel::nameColumn);
        return rows.isEmpty() ? QString() : rows.first().data().toString();
    };
    guide_->clickHeader(ui::ItemListModel::sizeColumn);
    EXPECT_EQ(selectedName(), photos);
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(selectedName(), photos);

    const int row = guide_->row(photos);
    const QString next = guide_->list()->model()->index(row + 1, ui::ItemListModel::nameColumn).data().toString();
    guide_->clickCell(row, ui::ItemListModel::checkColumn);  // only this one
    clean();
    EXPECT_EQ(guide_->row(photos), -1);
    EXPECT_EQ(selectedName(), next);

    // Also when all above it go with it.
    const int last = guide_->list()->model()->rowCount() - 1;
    guide_->clickCell(5, ui::ItemListModel::nameColumn);
    const QString following = guide_->list()->model()->index(6, ui::ItemListModel::nameColumn).data().toString();
    for (int above = 0; above <= 5; ++above) {
        guide_->list()->model()->setData(guide_->list()->model()->index(above, ui::ItemListModel::checkColumn),
                                         Qt::Checked, Qt::CheckStateRole);
    }
    clean();
    EXPECT_EQ(guide_->list()->model()->rowCount(), last - 5);
    EXPECT_EQ(selectedName(), following);
}

TEST_F(WindowJourney, ANewScanShowsNothingOfTheOldOne) {
    start(heldScans());
    letOn_.release();
    scan();
    ASSERT_EQ(names(), QStringList{QStringLiteral("found")});
    // The operation has begun anew and found nothing yet that the window has heard of.
    Guide::click(scanButton());
    EXPECT_EQ(guide_->list(), nullptr);
    EXPECT_EQ(status(), QStringLiteral("Zero Bytes, Selected of 0 B"));
    letOn_.release();
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning(); }));
    EXPECT_EQ(names(), QStringList{QStringLiteral("found")});
}

TEST_F(WindowJourney, AnEmptyOrMissingCachesFolderIsSaid) {
    trial::removeTree(caches());
    trial::removeTree(home_.containers());
    start();
    scan();
    EXPECT_EQ(guide_->list(), nullptr);
    EXPECT_EQ(subtitle(0), QStringLiteral("No files found"));
    EXPECT_FALSE(lists()->pbtnClean()->isEnabled());
    clickSection(logsRow);
    EXPECT_EQ(subtitle(logsRow), QStringLiteral("Not Scanned")) << "not offered yet";
}

TEST_F(WindowJourney, WhereALinkLeadsAndWhyAFolderIsNotLookedIntoIsSaid) {
    fs::rename(caches(), folder_ / "disk");
    fs::create_directory_symlink(folder_ / "disk", caches());
    start();
    scan();
    const auto says = [&](const QString& wanted) {
        for (const auto* label : lists()->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text().contains(wanted)) {
                return true;
            }
        }
        return false;
    };
    const auto described = [&](int role) { return sections()->model()->index(0, 0).data(role).toString(); };
    const QString disk = QString::fromStdString((folder_ / "disk").native());
    EXPECT_TRUE(says(QStringLiteral("which leads to ") + disk));
    EXPECT_TRUE(described(Qt::ToolTipRole).contains(disk));
    EXPECT_GE(guide_->row(QString::fromLatin1(trial::SampleHome::plainFileName)), 0);

    fs::remove(caches());
    fs::remove_all(home_.containers());
    fs::create_directory_symlink(home_.documents(), caches());
    scan();
    const auto reason = QStringLiteral("it is a folder for your own files");
    EXPECT_EQ(guide_->list(), nullptr);
    EXPECT_EQ(subtitle(0), QStringLiteral("No files found"));
    EXPECT_TRUE(says(reason));
    EXPECT_TRUE(described(Qt::ToolTipRole).contains(reason));
    EXPECT_TRUE(described(Qt::AccessibleDescriptionRole).contains(reason));
}

TEST_F(WindowJourney, OddNamesAreShownOnOneLineAndRemovedExactly) {
    trial::removeTree(caches());
    trial::removeTree(home_.containers());
    const std::string odd = "line\nbreak \xff\xfe end";
    trial::writeFile(caches() / odd, "12345");
    start();
    scan();
    const QChar unknown = QChar::ReplacementCharacter;
    EXPECT_EQ(names(), QStringList{QStringLiteral("line%1break %1%1 end").arg(unknown)});
    clean();
    EXPECT_TRUE(fs::is_empty(caches()));
}

}  // namespace
