// What is stopped, what hangs, and what comes late.

#include <gmock/gmock.h>

#include <QLabel>
#include <QSignalSpy>
#include <QThread>
#include <algorithm>

#include "engine/model/FileSize.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/operations/OperationQueue.h"
#include "files/trees/Remove.h"
#include "support/SectionWork.h"
#include "support/WindowFixture.h"
#include "ui/services/DefaultsKeys.h"

namespace fs = std::filesystem;

using namespace brimvault;
using engine::Section;
using trial::Guide;

namespace {

constexpr int cachesRow = 0;
constexpr int logsRow = 2;
constexpr int trashRow = 4;

std::shared_ptr<engine::FFItem> deletable(const std::shared_ptr<engine::FFItem>& item) {
    item->setPpbDeletable(true);
    return item;
}

// Has removed everything, and hangs before it can tell.
class HangingClean final : public engine::SectionOperation {
public:
    HangingClean(engine::ItemArray items, std::shared_ptr<tests::Hang> hang)
        : SectionOperation(Section::caches), items_(std::move(items)), hang_(std::move(hang)) {}

protected:
    void main() override { hang_->wait(); }
    void givenUp() override {
        const auto words = engine::vocabulary(section());
        engine::NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items_}});
    }

private:
    const engine::ItemArray items_;
    const std::shared_ptr<tests::Hang> hang_;
};

// Takes long to remove its item, but gets on with it, and then has done what it does.
class SlowClean final : public engine::SectionOperation {
public:
    explicit SlowClean(fs::path folder) : SectionOperation(Section::caches), folder_(std::move(folder)) {}

protected:
    void main() override {
        constexpr int files = 8;
        for (int number = 0; number < files; ++number) {
            trial::writeFile(folder_ / std::to_string(number), "1");
            QThread::msleep(static_cast<unsigned long>(engine::OperationQueue::timeToReturn.count()) / 3);
            (void)files::remove(folder_ / std::to_string(number));
        }
        trial::writeFile(folder_ / "done", "1");
    }

private:
    const fs::path folder_;
};

class StoppingJourney : public tests::WindowFixture {
protected:
    ~StoppingJourney() override { hang_->letOn(); }

    // Real scans, but that of Caches finds some items and then hangs; the next one finds one item.
    engine::ScanTable hangingScans(qsizetype found) {
        auto table = allScans();
        table.operations[Section::caches] = [this, found, hang = hang_] {
            return std::make_shared<tests::SuppliedScan>(
                Section::caches, [found, hang, first = ++scansOfCaches_ == 1](auto&) -> engine::ItemArray {
                    if (!first) {
                        return {deletable(engine::FFItem::initWithName("next", 1))};
                    }
                    engine::ItemArray items;
                    for (qsizetype number = 0; number < found; ++number) {
                        items.append(deletable(engine::FFItem::initWithName(std::to_string(number), 1)));
                    }
                    const auto words = engine::vocabulary(Section::caches);
                    engine::NotificationCenter::defaultCenter().post(
                        words.scanProgress, {{words.arrayKey, items}, {engine::key::progressPercent, 45LL}});
                    hang->wait();
                    return items + engine::ItemArray{deletable(engine::FFItem::initWithName("late", 1))};
                });
        };
        return table;
    }
    void scanUntilItHangs() {
        Guide::click(scanButton());
        ASSERT_TRUE(Guide::waitFor([this] { return isStarted(); }));
    }
    [[nodiscard]] bool isStarted() const {
        const auto& scanner = application_->psectController().performer().pscaner();
        return hang_->holdsAny() && model().progressPercent(Section::caches) && !scanner.isScanning(Section::logs) &&
               !scanner.isScanning(Section::trash) && !scanner.isScanning(Section::languageResources);
    }
    [[nodiscard]] engine::DataMan& model() const { return application_->psectController().getAppResDS(); }
    [[nodiscard]] bool isScanReturning() const { return application_->isScanReturning(); }
    [[nodiscard]] QString note(int row) const {
        return sections()->model()->index(row, 0).data(ui::SectionListModel::noteRole).toString();
    }
    // In the place of the list.
    [[nodiscard]] bool isSaid(const QString& text) const {
        const auto labels = lists()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) { return label->text() == text; });
    }
    void doNotAsk() const { defaults_->setBoolean(ui::defaults_key::suppressRemovalAlert, true); }

    const std::shared_ptr<tests::Hang> hang_ = std::make_shared<tests::Hang>();
    int scansOfCaches_ = 0;
};

TEST_F(StoppingJourney, AScanThatHangsKeepsNothingElseWaitingAndIsNotBegunAgain) {
    start(hangingScans(14'052));
    scanUntilItHangs();
    EXPECT_EQ(note(cachesRow), QString());
    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning());
    EXPECT_TRUE(isScanReturning());
    EXPECT_TRUE(lists()->pbtnClean()->isEnabled()) << "the controls are back at once";
    EXPECT_EQ(note(cachesRow), QStringLiteral("Stopped, 14,052 items so far"));
    EXPECT_EQ(note(logsRow), QString()) << "it had ended";

    Guide::click(scanButton());
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbScanning(); })) << "the others are scanned";
    EXPECT_EQ(scansOfCaches_, 1);
    EXPECT_EQ(note(cachesRow), QStringLiteral("Does not answer, skipped"));
    EXPECT_TRUE(subtitle(cachesRow).endsWith(QStringLiteral(" Selected"))) << subtitle(cachesRow).toStdString();
    EXPECT_EQ(model().getCachesCount(), 14'052) << "what it found before";

    hang_->letOn();
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->isAnythingLeftBehind(); }));
    QTest::qWait(1);
    EXPECT_EQ(model().getCachesCount(), 14'052) << "nobody hears what it brings now";
    scan();
    EXPECT_EQ(names(), QStringList{QStringLiteral("next")});
    EXPECT_EQ(note(cachesRow), QString());
}

TEST_F(StoppingJourney, TheWindowClosesWhileAScanHangs) {
    start(hangingScans(1));
    scanUntilItHangs();
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
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
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
    EXPECT_FALSE(isScanReturning());
}

TEST_F(StoppingJourney, TheWindowClosesWhileACleanHangsAndRecordsWhatWent) {
    engine::CleanTable cleans;
    cleans.files[Section::caches] = [hang = hang_](const engine::ItemArray& items) {
        return std::make_shared<HangingClean>(items, hang);
    };
    start(scans(), std::move(cleans));
    scan();
    const quint64 before = model().getSize2CleanCachesSel();
    alerts_.answers.push_back(tests::agree);
    Guide::click(lists()->pbtnClean());
    ASSERT_TRUE(Guide::waitFor([this] { return hang_->holdsAny(); }));
    Guide::click(lists()->pbtnClean());
    EXPECT_TRUE(application_->pbCleanning()) << "it is still under way";
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
    EXPECT_EQ(defaults_->number(ui::defaults_key::totalCleanedSize), before);
}

TEST_F(StoppingJourney, TheWindowWaitsForARemovalThatGetsOn) {
    engine::CleanTable cleans;
    cleans.files[Section::caches] = [folder = caches()](const engine::ItemArray&) {
        return std::make_shared<SlowClean>(folder);
    };
    start(scans(), std::move(cleans));
    scan();
    alerts_.answers.push_back(tests::agree);
    const auto before = files::entriesRemoved();
    Guide::click(lists()->pbtnClean());
    ASSERT_TRUE(Guide::waitFor([before] { return files::entriesRemoved() > before; }));
    EXPECT_FALSE(window()->close());
    EXPECT_TRUE(Guide::waitFor([this] { return !window()->isVisible(); }));
    EXPECT_TRUE(fs::exists(caches() / "done"));
    EXPECT_FALSE(application_->isAnythingLeftBehind());
}

TEST_F(StoppingJourney, ACleanTakesWhatWasTickedWhenTheQuestionCame) {
    start();
    scan();
    const quint64 selected = model().getSize2CleanCachesSel();
    trial::writeFile(caches() / "late", "12345");
    alerts_.whileOpen = [this] {
        auto whole = model().getCachesArray();
        whole.append(deletable(engine::FFItem::initWithPath(caches() / "late", 5)));
        model().setCachesArray(whole);
    };
    clean();
    ASSERT_NE(guide_->list(), nullptr);
    EXPECT_EQ(names(), QStringList{QStringLiteral("late")});
    EXPECT_TRUE(isChecked(QStringLiteral("late")));
    EXPECT_TRUE(fs::exists(caches() / "late"));
    EXPECT_EQ(defaults_->number(ui::defaults_key::totalCleanedSize), selected);
    EXPECT_EQ(note(cachesRow), QString()) << "something is left";
}

TEST_F(StoppingJourney, ASectionThatWasEmptiedTellsWhatWasCleaned) {
    start(allScans());
    scan();
    clickSectionCheck(logsRow);
    const QString size = engine::FileSize::formatMemoryStringDot1(model().getSize2CleanCachesSel());
    clean();
    EXPECT_EQ(subtitle(cachesRow), QStringLiteral("No files found"));
    EXPECT_EQ(note(cachesRow), size + QStringLiteral(" cleaned"));
    EXPECT_EQ(note(logsRow), QString());
    const auto description = sections()->model()->index(cachesRow, 0).data(Qt::AccessibleDescriptionRole).toString();
    EXPECT_EQ(description, QStringLiteral("No files found. ") + size + QStringLiteral(" cleaned"));
    scan();
    EXPECT_EQ(note(cachesRow), QString());
}

TEST_F(StoppingJourney, ThePanelSpeaksOfItsOwnSection) {
    start(hangingScans(0));
    clickSectionCheck(logsRow);
    scanUntilItHangs();
    EXPECT_TRUE(isSaid(QStringLiteral("Scanning...")));
    clickSection(logsRow);
    EXPECT_TRUE(isSaid(QStringLiteral("Not Scanned"))) << "it is not being scanned";
    clickSection(trashRow);
    EXPECT_TRUE(Guide::waitFor([this] { return isSaid(subtitle(trashRow)); })) << "its scan has ended";
    Guide::click(scanButton());
    EXPECT_EQ(note(cachesRow), QStringLiteral("Stopped, nothing found so far"));
    clickSection(cachesRow);
    EXPECT_FALSE(isSaid(QStringLiteral("Scanning...")));
}

TEST_F(StoppingJourney, ADoubleClickDoesOneThing) {
    start(hangingScans(1));
    const auto doubleClick = [](QWidget* button) {
        Guide::click(button);
        QTest::mouseDClick(button, Qt::LeftButton);
        QTest::mouseRelease(button, Qt::LeftButton);
    };
    QTest::mouseDClick(scanButton(), Qt::LeftButton);
    QTest::mouseRelease(scanButton(), Qt::LeftButton);
    EXPECT_FALSE(application_->pbScanning()) << "its first press was elsewhere";
    doubleClick(scanButton());
    EXPECT_TRUE(application_->pbScanning()) << "it starts, and does not stop";
    ASSERT_TRUE(Guide::waitFor([this] { return isStarted(); }));
    doubleClick(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "it stops, and does not start again";
    Guide::click(scanButton());
    EXPECT_TRUE(application_->pbScanning());
    Guide::click(scanButton());
    EXPECT_FALSE(application_->pbScanning()) << "a single click on Stop is never lost";

    doNotAsk();
    int cleans = 0;
    const auto counted = engine::NotificationCenter::defaultCenter().addObserver(engine::notification::cleanFinished,
                                                                                 [&](const auto&) { ++cleans; });
    doubleClick(lists()->pbtnClean());
    EXPECT_EQ(application_->activity(), ui::Activity::cleaning) << "it starts, and does not stop";
    ASSERT_TRUE(Guide::waitFor([this] { return !application_->pbCleanning(); }));
    EXPECT_EQ(cleans, 1);

    ui::WhiteTitleButton steady;
    const QSignalSpy presses(&steady, &QAbstractButton::clicked);
    doubleClick(&steady);
    EXPECT_EQ(presses.size(), 2) << "a button that stays what it is takes both";
}

}  // namespace
