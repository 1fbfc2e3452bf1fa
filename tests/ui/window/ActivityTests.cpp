// What the window is doing, and which of its controls can be used meanwhile.

#include "support/SectionWork.h"
#include "support/WindowFixture.h"

namespace brimvault::tests {

using ui::Activity;

class ActivityTest : public WindowFixture {
protected:
    // What the user may press and tick, the two main buttons by the name that they have now.
    [[nodiscard]] QString usable() const {
        const auto isTickable = [](const QAbstractItemModel* model, int row) {
            return model->index(row, ui::CheckTableView::checkColumn).flags().testFlag(Qt::ItemIsUserCheckable);
        };
        const auto* clean = lists()->pbtnClean();
        const std::pair<QString, bool> controls[] = {
            {scanButton()->accessibleName(), scanButton()->isEnabled()},
            {clean->accessibleName(), clean->isEnabled()},
            {QStringLiteral("items"), lists()->pbtnInf()->isEnabled() && lists()->pbtnFinder()->isEnabled()},
            {QStringLiteral("all"), lists()->pbtnSelectAll()->isEnabled()},
            {QStringLiteral("sections"), isTickable(sections()->model(), 0)},
            {QStringLiteral("list"), isTickable(guide_->list()->model(), 0)},
            {QStringLiteral("languages"), isTickable(window()->pDrawer()->ptableView()->model(), 1)},
        };
        QStringList usable;
        for (const auto& [name, isUsable] : controls) {
            usable += isUsable ? QStringList(name) : QStringList();
        }
        return usable.join(QStringLiteral(", "));
    }
    // What is said to be going on; nothing where the sizes are shown.
    [[nodiscard]] QString going() const {
        const QString text = status().section(QStringLiteral(", "), -1);
        return text.startsWith(QStringLiteral("Selected of ")) ? QString() : text;
    }
};

TEST_F(ActivityTest, TheControlsFollowItThroughAllItsTransitions) {
    auto oneByte = scans();
    oneByte.operations[engine::Section::caches] = [] {
        return std::make_shared<SuppliedScan>(engine::Section::caches, [](auto&) {
            auto item = engine::FFItem::initWithName("found", 1);
            item->setPpbDeletable(true);
            return engine::ItemArray{item};
        });
    };
    start(std::move(oneByte));
    scan();
    const auto text = [](const char* latin) { return QString::fromLatin1(latin); };
    const auto free = text("Scan, Clean, items, all, sections, list, languages");
    const struct {
        Activity activity;
        QString usable;
        QString going;
    } walk[] = {
        {Activity::idle, free, {}},
        {Activity::asking, free, {}},
        {Activity::idle, free, {}},
        {Activity::awaitingScan, text("Stop Scanning, list, languages"), {}},
        {Activity::scanning, text("Stop Scanning, list, languages"), {}},
        {Activity::idle, free, {}},
        {Activity::cleaning, text("Stop Cleaning"), text("Cleaning...")},
        {Activity::stoppingClean, text("Stop Cleaning"), text("Cleaning...")},
        {Activity::idle, free, text("Select files to clean")},
        {Activity::removing, text("items, languages"), text("Removing...")},
        {Activity::idle, free, {}},
    };
    for (const auto& step : walk) {
        application_->setActivity(step.activity);
        const auto number = static_cast<int>(step.activity);
        EXPECT_EQ(usable(), step.usable) << number;
        EXPECT_EQ(going(), step.going) << number;
        EXPECT_EQ(window()->sidebar()->pProgressScan()->isAnimated(), application_->pbScanning()) << number;
        EXPECT_EQ(lists()->pProgressClean()->isAnimated(), application_->pbCleanning()) << number;
    }
    Guide::click(lists()->pbtnSelectAll());
    EXPECT_EQ(usable(), text("Scan, items, all, sections, list, languages")) << "nothing is selected";
}

TEST_F(ActivityTest, AWindowThatIsClosedMeanwhileGoesAtItsEnd) {
    for (const auto activity : {Activity::scanning, Activity::cleaning, Activity::removing}) {
        start();
        application_->setActivity(activity);
        EXPECT_FALSE(window()->close());
        EXPECT_FALSE(window()->isEnabled());
        EXPECT_EQ(application_->activity(), activity) << "it is still under way";
        application_->setActivity(Activity::idle);
        EXPECT_EQ(application_->activity(), Activity::closed);
        EXPECT_FALSE(window()->isVisible());
        quit();
    }
}

TEST_F(ActivityTest, OnlyWhatRunsIsEnded) {
    start();
    application_->setPbScanning(true);
    application_->setPbCleanning(false);
    application_->setPbRemoving(false);
    EXPECT_TRUE(application_->pbScanning());
    EXPECT_TRUE(application_->sectionControllerIsScanOrRemoveProcessPerforming());
    application_->setPbScanning(false);
    EXPECT_EQ(application_->activity(), Activity::idle);
}

}  // namespace brimvault::tests
