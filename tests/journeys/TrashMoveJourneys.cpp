// Downloads that are moved to the Trash, and back.

#include "support/WindowFixture.h"

namespace brimvault::tests {

class TrashMoveJourney : public WindowFixture {
protected:
    void SetUp() override {
        start(allScans());
        clickSectionCheck(downloadsRow);
        scan();
    }
};

TEST_F(TrashMoveJourney, CtrlDeleteMovesADownloadAndTheButtonPutsItBack) {
    const auto before = home_.everythingOutside({".local/share/Trash"});
    const auto total = cleanedInTotal();
    show(downloadsRow);
    auto* list = guide_->list();
    list->setFocus();
    const auto* undo = lists()->movedLine()->undoButton();
    const auto press = [&](Qt::Key key, const QString& gone) {
        guide_->list()->setCurrentIndex(cell(gone, ItemListModel::nameColumn));
        type(key, Qt::ControlModifier);
        return Guide::waitFor([&] { return guide_->row(gone) < 0 && !application_->pbRemoving(); });
    };
    EXPECT_FALSE(lists()->movedLine()->isVisible());
    ASSERT_TRUE(press(Qt::Key_Delete, u"photos.zip"_s));
    EXPECT_TRUE(isSaid(u"Moved 41 MB to the Trash"_s));
    EXPECT_EQ(subtitle(downloadsRow), u"0 B of 580 MB Selected"_s);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Delete, Qt::ControlModifier, {}, true);
    QApplication::sendEvent(list, &held);
    EXPECT_FALSE(application_->pbRemoving()) << "a held key takes one alone";
    ASSERT_TRUE(press(Qt::Key_Delete, u"installer.iso"_s));
    EXPECT_TRUE(isSaid(u"Moved 621 MB to the Trash"_s));
    EXPECT_TRUE(fs::exists(home_.desktopTrash() / "info/photos.zip.trashinfo"));
    EXPECT_EQ(cleanedInTotal(), total);
    EXPECT_EQ(undo->accessibleName(), u"Undo: put “installer.iso” back"_s);
    clickSection(trashRow);
    EXPECT_FALSE(lists()->movedLine()->isVisible()) << "it speaks of Downloads";
    show(downloadsRow)->setFocus();

    for (int tabs = 0; !undo->hasFocus() && tabs < 20; ++tabs) {
        type(Qt::Key_Tab);
    }
    ASSERT_TRUE(undo->hasFocus());
    type(Qt::Key_Space);
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"installer.iso"_s) >= 0 && !application_->pbRemoving(); }));
    EXPECT_TRUE(Guide::waitFor([&] { return undo->hasFocus(); })) << "there is more to put back";
    EXPECT_TRUE(isSaid(u"Moved 41 MB to the Trash"_s));
    type(Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"photos.zip"_s) >= 0; }));
    EXPECT_TRUE(list->hasFocus());
    EXPECT_EQ(home_.everythingOutside({".local/share/Trash"}), before);
    EXPECT_FALSE(lists()->movedLine()->isVisible());
    EXPECT_EQ(subtitle(downloadsRow), u"0 B of 621 MB Selected"_s);
    EXPECT_TRUE(alerts_.asked.empty());
}

TEST_F(TrashMoveJourney, IsUndoneUntilTheNextScanWhereItsPlaceIsFree) {
    show(downloadsRow);
    const auto move = [&](const QString& name) {
        select(name);
        QTest::keyClick(guide_->list(), Qt::Key_Delete, Qt::ControlModifier);
        return Guide::waitFor([&] { return guide_->row(name) < 0 && !application_->pbRemoving(); });
    };
    application_->setPbCleanning(true);
    select(u"photos.zip"_s);
    QTest::keyClick(guide_->list(), Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_FALSE(application_->pbRemoving());
    application_->setPbCleanning(false);
    ASSERT_TRUE(move(u"photos.zip"_s));
    application_->setPbCleanning(true);
    EXPECT_FALSE(lists()->movedLine()->undoButton()->isEnabled());
    application_->setPbCleanning(false);
    writeFile(home_.downloads() / "photos.zip", "new");
    Guide::click(lists()->movedLine()->undoButton());
    ASSERT_TRUE(Guide::waitFor([this] { return alerts_.asked.size() == 1; }) &&
                Guide::waitFor([this] { return !application_->pbRemoving(); }));
    EXPECT_EQ(alerts_.asked.back().message, u"“photos.zip” could not be put back"_s);
    EXPECT_TRUE(isSaid(u"Moved 41 MB to the Trash"_s));
    EXPECT_LT(guide_->row(u"photos.zip"_s), 0);
    fs::remove(home_.downloads() / "photos.zip");
    Guide::click(lists()->movedLine()->undoButton());
    ASSERT_TRUE(Guide::waitFor([&] { return guide_->row(u"photos.zip"_s) >= 0 && !application_->pbRemoving(); }));
    EXPECT_FALSE(lists()->movedLine()->isVisible());
    ASSERT_TRUE(move(u"installer.iso"_s));
    scan();
    EXPECT_FALSE(lists()->movedLine()->isVisible());
    QTest::keyClick(window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(fs::exists(home_.downloads() / "installer.iso"));

    // Other sections know no such move; and what cannot be moved stays, and is told.
    show(trashRow);
    select(u"draft.doc"_s);
    QTest::keyClick(guide_->list(), Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(alerts_.asked.size(), 1U);
    show(downloadsRow);
    fs::rename(home_.downloads(), home_.path() / "Elsewhere");
    fs::create_directory(home_.downloads());
    select(u"invoice.txt"_s);
    QTest::keyClick(guide_->list(), Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_TRUE(Guide::waitFor([this] { return alerts_.asked.size() == 2; }));
    EXPECT_EQ(alerts_.asked.back().message, u"“invoice.txt” could not be moved to the Trash"_s);
    EXPECT_GE(guide_->row(u"invoice.txt"_s), 0);
}

}  // namespace brimvault::tests
