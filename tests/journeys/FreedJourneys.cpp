// The line beside the title that tells what a clean has freed.

#include "support/ToldVolumes.h"
#include "support/WindowFixture.h"
#include "ui/window/FreedText.h"

namespace brimvault::tests {

class FreedJourney : public WindowFixture {
protected:
    ToldVolumes volumes_;
};

TEST_F(FreedJourney, TellsWhatACleanFreedUntilTheNextScan) {
    volumes_.inUseAfter = {{files::statusOf(caches())->identity.device, 1, 1UL << 40U, "browser"}};
    auto cleans = app::cleanOperations(remover_);
    cleans.volumes = &volumes_;
    start(scans(), cleans);
    constexpr quint64 twins = 50'000'000;
    writeAllocatedFile(caches() / "twin", twins);
    fs::create_hard_link(caches() / "twin", caches() / "other twin");  // each frees nothing, both free it
    scan();
    const auto checks = application_->psectController().checks();
    ASSERT_TRUE(Guide::waitFor([&] { return model().sharedGroups() != nullptr; }));
    const auto selected = model().freesOfSelection(checks);
    volumes_.setFreeWhenFlushed(files::statusOf(caches())->identity.device, selected / 2);
    clean();
    const QString told = u"Freed %1 (%2 selected; %3 is still in use by browser or shared)"_s.arg(
        sizeText(selected / 2), sizeText(selected), sizeText(selected - selected / 2));
    EXPECT_TRUE(Guide::waitFor([&] { return isSaid(told); })) << told.toStdString();
    const auto labels = lists()->findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
        return label->text() == u"Caches"_s && label->accessibleDescription() == told;
    }));
    clickSection(logsRow);
    EXPECT_TRUE(isSaid(told)) << "it is about all sections";
    clickSection(cachesRow);
    scan();
    EXPECT_FALSE(isSaid(u"Freed "_s));
    engine::NotificationCenter::defaultCenter().post(
        engine::notification::spaceFreed,
        {{engine::key::freedSpace, engine::FreedSpace{selected, selected, selected}}});
    QCoreApplication::processEvents();
    EXPECT_FALSE(isSaid(u"Freed "_s)) << "it comes too late";
}

TEST(FreedTextTest, IsAsLongAsThereIsSomethingToTell) {
    constexpr quint64 mega = 1000UL * 1000;
    EXPECT_EQ(ui::freedText({100 * mega, 100 * mega, 96 * mega}), u"Freed 96 MB"_s);
    EXPECT_EQ(ui::freedText({100 * mega, 100 * mega, 60 * mega}),
              u"Freed 60 MB (100 MB selected; 40 MB is still in use or shared)"_s);
    EXPECT_EQ(ui::freedText({3400 * mega, 3400 * mega, 3100 * mega, {u"a"_s, u"b"_s, u"c"_s}}),
              u"Freed 3.1 GB (3.4 GB selected; 300 MB is still in use by a, b or shared)"_s);
    EXPECT_EQ(ui::freedText({900, 900, 0}), QString()) << "less than others write";
    EXPECT_EQ(ui::freedText({900, 900, 0, {}, 1}), u"1 log emptied"_s);
    EXPECT_EQ(ui::freedText({3100 * mega, 3100 * mega, 3100 * mega, {}, 2}), u"Freed 3.1 GB; 2 logs emptied"_s);
}

}  // namespace brimvault::tests
