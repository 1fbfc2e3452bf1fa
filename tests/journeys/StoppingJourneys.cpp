// What is stopped, what hangs, and what comes late.

#include <QSignalSpy>
#include <semaphore>

#include "engine/operations/OperationQueue.h"
#include "files/removal/Remove.h"
#include "support/EventLoop.h"
#include "support/SectionWork.h"
#include "support/WindowFixture.h"

namespace brimvault::tests {

namespace {

std::shared_ptr<engine::FFItem> deletable(const std::shared_ptr<engine::FFItem>& item) {
    item->setPpbDeletable(true);
    return item;
}

engine::ItemArray found(const std::string& name) { return {deletable(engine::FFItem::initWithName(name, 1))}; }

void tellOf(const engine::ItemArray& items) {
    const auto words = engine::vocabulary(Section::caches);
    engine::NotificationCenter::defaultCenter().post(words.scanProgress,
                                                     {{words.arrayKey, items}, {engine::key::progressPercent, 45LL}});
}

}  // namespace

class StoppingJourney : public WindowFixture {
protected:
    ~StoppingJourney() override { hang_->letOn(); }

    // That of Caches finds an item and then waits to be let on, or to be cancelled.
    engine::ScanTable heldScans() {
        engine::ScanTable table;
        table.operations[Section::caches] = [this] {
            return std::make_shared<SuppliedScan>(Section::caches, [this](const SuppliedScan& scan) {
                tellOf(found("found"));
                ++scansOfCaches_;
                const std::stop_callback atCancel(scan.stopToken(), [this] { letOn_.release(); });
                letOn_.acquire();
                return found("found");
            });
        };
        return table;
    }
    // Real scans, but that of Caches finds some items and then hangs; the next one finds one item.
    engine::ScanTable hangingScans(int count) {
        auto table = allScans();
        table.operations[Section::caches] = [this, count, hang = hang_] {
            return std::make_shared<SuppliedScan>(
                Section::caches, [count, hang, first = ++scansOfCaches_ == 1](auto&) -> engine::ItemArray {
                    if (!first) {
                        return found("next");
                    }
                    engine::ItemArray items;
                    for (int number = 0; number < count; ++number) {
                        items += found(std::to_string(number));
                    }
                    tellOf(items);
                    hang->wait();
                    return items + found("late");
                });
        };
        return table;
    }
    [[nodiscard]] bool comesToHang() const {
        return Guide::waitFor([this] {
            const auto& scanner = application_->psectController().performer().pscaner();
            return hang_->holdsAny() && model().progressPercent(Section::caches) &&
                   !scanner.isScanning(Section::logs) && !scanner.isScanning(Section::trash) &&
                   !scanner.isScanning(Section::languageResources);
        });
    }
    void scanUntilItHangs() {
        Guide::click(scanButton());
        ASSERT_TRUE(comesToHang());
    }
    /// Scans the caches, and has them cleaned by this work.
    void scanToCleanWith(std::function<std::shared_ptr<SuppliedWork>(const engine::ItemArray&)> work) {
        engine::CleanTable cleans;
        cleans.files[Section::caches] = std::move(work);
        start(scans(), std::move(cleans));
        scan();
    }

    const std::shared_ptr<Hang> hang_ = std::make_shared<Hang>();
    std::atomic<int> scansOfCaches_ = 0;
    std::counting_semaphore<> letOn_{0};
};

TEST_F(StoppingJourney, AStoppedScanKeepsWhatItFoundAndTheNextOneShowsNothingOfIt) {
    start(heldScans());
    Guide::click(scanButton());
    EXPECT_TRUE(application_->pbScanning());
    EXPECT_EQ(scanButton()->accessibleName(), u"Stop Scanning"_s);
    ASSERT_TRUE(Guide::waitFor([this] { return guide_->list() != nullptr; }));
    clickSectionCheck(cachesRow);
    EXPECT_TRUE(isSectionChecked(cachesRow)) << "check boxes rest while a scan runs";

    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "the controls are back at once";
    EXPECT_EQ(scanButton()->accessibleName(), u"Scan"_s);
    EXPECT_EQ(names(), QStringList{u"found"_s});
    Guide::click(scanButton());
    ASSERT_TRUE(Guide::waitFor([this] { return scansOfCaches_ == 2; }));
    runPending();
    EXPECT_TRUE(application_->pbScanning()) << "the end of the first scan is not that of the second";
    letOn_.release();
    awaitEndOfScan();
    EXPECT_EQ(names(), QStringList{u"found"_s});
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled());

    Guide::click(scanButton());
    EXPECT_EQ(guide_->list(), nullptr) << "nothing that the window has heard of was found yet";
    EXPECT_EQ(status(), u"Zero Bytes, Selected of 0 B"_s);
    letOn_.release();
    awaitEndOfScan();
    EXPECT_EQ(names(), QStringList{u"found"_s});
}

TEST_F(StoppingJourney, AScanThatHangsKeepsNothingElseWaitingAndIsNotBegunAgain) {
    start(hangingScans(14'052));
    scanUntilItHangs();
    EXPECT_EQ(note(cachesRow), QString());
    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning());
    EXPECT_TRUE(application_->isScanReturning());
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled()) << "the controls are back at once";
    EXPECT_EQ(note(cachesRow), u"Stopped, 14,052 items so far"_s);
    EXPECT_EQ(note(logsRow), QString()) << "it had ended";

    Guide::click(scanButton());
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning(); })) << "the others are scanned";
    EXPECT_EQ(scansOfCaches_, 1);
    EXPECT_EQ(note(cachesRow), u"Does not answer, skipped"_s);
    EXPECT_TRUE(subtitle(cachesRow).endsWith(u" Selected"_s)) << subtitle(cachesRow).toStdString();
    EXPECT_EQ(model().getCachesCount(), 14'052) << "what it found before";

    hang_->letOn();
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->isAnythingLeftBehind(); }));
    runPending();
    EXPECT_EQ(model().getCachesCount(), 14'052) << "nobody hears what it brings now";
    scan();
    EXPECT_EQ(names(), QStringList{u"next"_s});
    EXPECT_EQ(note(cachesRow), QString());
}

TEST_F(StoppingJourney, TheWindowClosesWhileAScanHangs) {
    start(hangingScans(1));
    scanUntilItHangs();
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(window()->isVisible());
    EXPECT_FALSE(window()->isEnabled());
    EXPECT_TRUE(isClosedInTheEnd());
    EXPECT_TRUE(application_->isAnythingLeftBehind());
    quit();  // does not wait for it
    EXPECT_TRUE(hang_->holdsAny());
}

TEST_F(StoppingJourney, AWindowThatIsClosedUnderAQuestionDoesNotWaitForTheAnswer) {
    start(hangingScans(1));
    scanUntilItHangs();
    Guide::click(scanButton());
    const ui::ApplicationController::OpenQuestion question(*application_);
    EXPECT_FALSE(window()->close()) << "the scan has not returned";
    hang_->letOn();
    EXPECT_TRUE(isClosedInTheEnd());
    EXPECT_FALSE(application_->isScanReturning());
}

TEST_F(StoppingJourney, TheWindowClosesWhileACleanHangsAndRecordsWhatWent) {
    // It has removed everything, and hangs before it can tell.
    scanToCleanWith([hang = hang_](const auto& items) {
        return std::make_shared<SuppliedWork>(
            [hang](auto&) { hang->wait(); }, Section::caches,
            [items](auto&) {
                const auto words = engine::vocabulary(Section::caches);
                engine::NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items}});
            });
    });
    const quint64 before = model().getSize2CleanCachesSel();
    pressClean();
    ASSERT_TRUE(Guide::waitFor([this] { return hang_->holdsAny(); }));
    Guide::click(lists()->pbtnClean());
    EXPECT_TRUE(application_->pbCleanning()) << "it is still under way";
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(isClosedInTheEnd());
    EXPECT_EQ(cleanedInTotal(), before);
}

TEST_F(StoppingJourney, TheWindowWaitsForARemovalThatGetsOn) {
    // It takes long to remove what it removes, but gets on with it.
    scanToCleanWith([folder = caches()](const auto&) {
        return std::make_shared<SuppliedWork>([folder](auto&) {
            for (int number = 0; number < 8; ++number) {
                writeFile(folder / "next", "1");
                std::this_thread::sleep_for(engine::OperationQueue::returnTimeout / 3);
                (void)files::remove(folder / "next");
            }
            writeFile(folder / "done", "1");
        });
    });
    const auto before = files::entriesRemoved();
    pressClean();
    ASSERT_TRUE(Guide::waitFor([before] { return files::entriesRemoved() > before; }));
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(isClosedInTheEnd());
    EXPECT_TRUE(fs::exists(caches() / "done"));
    EXPECT_FALSE(application_->isAnythingLeftBehind());
}

TEST_F(StoppingJourney, ACleanTakesWhatWasTickedWhenTheQuestionCameAndNothingElseBegins) {
    startAndScan();
    const quint64 selectedSize = model().getSize2CleanCachesSel();
    writeFile(caches() / "late", "12345");
    alerts_.whileOpen = [this] {
        application_->psectController().doStartScan();
        application_->psectController().doStartClean();
        EXPECT_FALSE(application_->pbScanning() || application_->pbCleanning());
        auto whole = model().getCachesArray();
        whole.append(deletable(engine::FFItem::initWithPath(caches() / "late", 5)));
        model().setCachesArray(whole);
    };
    clean();
    EXPECT_EQ(alerts_.asked.size(), 1U);
    ASSERT_NE(guide_->list(), nullptr);
    EXPECT_EQ(names(), QStringList{u"late"_s});
    EXPECT_TRUE(isChecked(u"late"_s));
    EXPECT_TRUE(fs::exists(caches() / "late"));
    EXPECT_EQ(cleanedInTotal(), selectedSize);
    EXPECT_EQ(note(cachesRow), QString()) << "something is left";
}

TEST_F(StoppingJourney, ASectionThatWasEmptiedTellsWhatWasCleaned) {
    startAndScan(allScans());
    clickSectionCheck(logsRow);
    const QString cleaned = sizeText(model().getSize2CleanCachesSel()) + u" cleaned"_s;
    clean();
    EXPECT_EQ(subtitle(cachesRow), u"No files found"_s);
    EXPECT_EQ(note(cachesRow), cleaned);
    EXPECT_EQ(note(logsRow), QString());
    EXPECT_EQ(ofSection(cachesRow, Qt::AccessibleDescriptionRole), u"No files found. "_s + cleaned);
    scan();
    EXPECT_EQ(note(cachesRow), QString());
}

TEST_F(StoppingJourney, ThePanelSpeaksOfItsOwnSection) {
    start(hangingScans(0));
    clickSectionCheck(logsRow);
    scanUntilItHangs();
    EXPECT_TRUE(isSaid(u"Scanning..."_s));
    clickSection(logsRow);
    EXPECT_TRUE(isSaid(u"Not Scanned"_s)) << "it is not being scanned";
    clickSection(trashRow);
    ASSERT_TRUE(Guide::waitFor([this] { return guide_->list() != nullptr; }));
    EXPECT_TRUE(Guide::waitFor([this] { return !isSaid(u"Scanning..."_s) && !isSaid(u" so far"_s); }))
        << "its scan has ended";
    Guide::click(scanButton());
    EXPECT_EQ(note(cachesRow), u"Stopped, nothing found so far"_s);
    clickSection(cachesRow);
    EXPECT_FALSE(isSaid(u"Scanning..."_s));
}

TEST_F(StoppingJourney, ADoubleClickDoesOneThing) {
    start(hangingScans(1));
    const auto secondPress = [](QWidget* button) {
        QTest::mouseDClick(button, Qt::LeftButton);
        QTest::mouseRelease(button, Qt::LeftButton);
    };
    const auto doubleClick = [&](QWidget* button) {
        Guide::click(button);
        secondPress(button);
    };
    secondPress(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "its first press was elsewhere";
    doubleClick(scanButton());
    EXPECT_TRUE(application_->pbScanning()) << "it starts, and does not stop";
    ASSERT_TRUE(comesToHang());
    doubleClick(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "it stops, and does not start again";
    Guide::click(scanButton());
    EXPECT_TRUE(application_->pbScanning());
    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "a single click on Stop is never lost";

    defaults_->setBoolean(ui::defaults_key::suppressRemovalAlert, true);
    int cleans = 0;
    const auto counted = engine::NotificationCenter::defaultCenter().addObserver(engine::notification::cleanFinished,
                                                                                 [&](const auto&) { ++cleans; });
    doubleClick(lists()->pbtnClean());
    EXPECT_EQ(application_->activity(), ui::Activity::cleaning) << "it starts, and does not stop";
    awaitEndOfClean();
    EXPECT_EQ(cleans, 1);

    ui::WhiteTitleButton steady;
    const QSignalSpy presses(&steady, &QAbstractButton::clicked);
    doubleClick(&steady);
    EXPECT_EQ(presses.size(), 2) << "a button that stays what it is takes both";
}

}  // namespace brimvault::tests
