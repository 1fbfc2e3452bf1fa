#include <gmock/gmock.h>

#include <QDateTime>
#include <QLocale>

#include "engine/model/DataMan.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/OpenedElsewhere.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ItemNote;
using engine::Section;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

class DownloadsScan : public testing::Test {
protected:
    DownloadsScan() { fs::create_directories(downloads_); }

    void scan() {
        rows_.clear();
        for (const auto& item : scanSection(Section::downloads).items) {
            EXPECT_FALSE(item->ppbChecked());
            if (item->ppnSize() != 0) {
                rows_[item->pfname()] = item;
            }
        }
    }
    [[nodiscard]] std::map<std::string, ItemNote> notes() const {
        std::map<std::string, ItemNote> notes;
        for (const auto& [name, item] : rows_) {
            notes[name] = item->note();
        }
        return notes;
    }
    /// What the row stands for beside itself, with its size.
    [[nodiscard]] std::pair<std::vector<std::string>, quint64> whole(const std::string& name) const {
        const auto& item = rows_.at(name);
        std::vector<std::string> names;
        for (const auto& path : item->removalPaths()) {
            EXPECT_EQ(path.parent_path(), downloads_);
            names.push_back(path.filename());
        }
        return {names, item->pfSize()};
    }
    engine::NotRemovedDictionary cleanAll() {
        engine::ItemArray items;
        for (const auto& [name, item] : rows_) {
            item->setPpbChecked(true);
            items.append(item);
        }
        return cleanItems(Section::downloads, items);
    }

    TemporaryFolder folder_;
    const fs::path downloads_ = folder_ / "home/Downloads";
    const SubstituteHome home_{folder_ / "home", {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    std::map<std::string, std::shared_ptr<engine::FFItem>> rows_;
};

}  // namespace

TEST_F(DownloadsScan, MarksWhatWasNotFinishedWithTheDayOfTheLastChange) {
    for (const char* name : {"a.part", "b.crdownload", "c.opdownload", "d.download/e", "f.partial", "g.aria2", "h.!qB",
                             "i.!ut", "j.ytdl", "k.filepart", "l.tmp", "l", "alone.tmp", "part", "m.part1.rar"}) {
        writeFile(downloads_ / name, "12345");
    }
    fs::create_symlink("part", downloads_ / "link.part");
    const std::chrono::sys_time<std::chrono::nanoseconds> day =
        std::chrono::sys_days(std::chrono::year{2021} / 3 / 4) + std::chrono::hours(12);
    fs::last_write_time(downloads_ / "a.part", std::chrono::file_clock::from_sys(day));
    scan();
    std::vector<std::string> marked;
    for (const auto& [name, note] : notes()) {
        if (note == ItemNote::unfinished) {
            marked.push_back(name);
        } else {
            EXPECT_EQ(note, ItemNote::none) << name;
        }
    }
    EXPECT_THAT(marked, ElementsAre("a.part", "b.crdownload", "c.opdownload", "d.download", "f.partial", "g.aria2",
                                    "h.!qB", "i.!ut", "j.ytdl", "k.filepart", "l.tmp"));
    EXPECT_EQ(rows_.size(), 16U);
    EXPECT_EQ(rows_.at("a.part")->details().noteArgument, u"2021-03-04T12:00:00Z");
    EXPECT_EQ(rows_.at("a.part")->noteText(), QStringLiteral("Unfinished, last written on ") +
                                                  QLocale().toString(QDate(2021, 3, 4), QLocale::ShortFormat));
    EXPECT_FALSE(rows_.at("a.part")->isTickedByHandOnly());
}

TEST_F(DownloadsScan, TakesADownloadAndWhatBelongsToItForOneRow) {
    writeFile(downloads_ / "film.mkv.part", "12345");
    writeFile(downloads_ / "film.mkv", "");
    writeFile(downloads_ / "disk.3kGv_Tz9.iso.part", "12345");
    writeFile(downloads_ / "disk.iso", "");
    writeFile(downloads_ / "image", "12345");
    writeFile(downloads_ / "image.aria2", "123");
    writeFile(downloads_ / "clip.mp4.part", "12345");
    writeFile(downloads_ / "clip.mp4.ytdl", "1");
    writeFile(downloads_ / "old.pdf.part", "12345");
    writeFile(downloads_ / "old.pdf", "the one before");
    writeFile(downloads_ / "new.odt.tmp", "12345");
    writeFile(downloads_ / "new.odt", "");
    scan();
    const auto unfinished = ItemNote::unfinished;
    EXPECT_THAT(notes(), UnorderedElementsAre(Pair("film.mkv.part", unfinished),
                                              Pair("disk.3kGv_Tz9.iso.part", unfinished), Pair("image", unfinished),
                                              Pair("clip.mp4.part", unfinished), Pair("old.pdf.part", unfinished),
                                              Pair("old.pdf", ItemNote::none), Pair("new.odt.tmp", unfinished)));
    EXPECT_THAT(whole("film.mkv.part"), Pair(ElementsAre("film.mkv.part", "film.mkv"), 5));
    EXPECT_THAT(whole("disk.3kGv_Tz9.iso.part"), Pair(ElementsAre("disk.3kGv_Tz9.iso.part", "disk.iso"), 5));
    EXPECT_THAT(whole("image"), Pair(ElementsAre("image", "image.aria2"), 8));
    EXPECT_THAT(whole("clip.mp4.part"), Pair(ElementsAre("clip.mp4.part", "clip.mp4.ytdl"), 6));
    EXPECT_THAT(whole("old.pdf.part"), Pair(IsEmpty(), 5));
    EXPECT_THAT(whole("new.odt.tmp"), Pair(IsEmpty(), 5));
    writeFile(downloads_ / "clip.mp4.ytdl", "4");
    EXPECT_THAT(cleanAll(), IsEmpty());
    EXPECT_TRUE(fs::remove(downloads_ / "new.odt")) << "may be a document that is just begun";
    EXPECT_TRUE(fs::is_empty(downloads_));
}

// The download ends between the scan and the clean: it is renamed, or written into the file of its later name.
TEST_F(DownloadsScan, LeaveAFileThatWasFinishedMeanwhile) {
    for (const bool inPlace : {false, true}) {
        writeFile(downloads_ / "film.mkv.part", "12345");
        writeFile(downloads_ / "film.mkv", "");
        scan();
        if (inPlace) {
            writeFile(downloads_ / "film.mkv", "12345");
        } else {
            fs::rename(downloads_ / "film.mkv.part", downloads_ / "film.mkv");
        }
        EXPECT_EQ(cleanAll().size(), 1);
        EXPECT_EQ(contentOf(downloads_ / "film.mkv"), "12345");
        EXPECT_FALSE(fs::exists(downloads_ / "film.mkv.part")) << "the rest goes";
        fs::remove(downloads_ / "film.mkv");
    }
}

TEST_F(DownloadsScan, TellsWhichProgramIsWritingToADownload) {
    for (const char* file : {"film.mkv.part", "archive/part", "quiet.part", "image", "image.aria2", "read/book.pdf"}) {
        writeFile(downloads_ / file, "12345");
    }
    using As = OpenedElsewhere::As;
    const OpenedElsewhere download(downloads_ / "film.mkv.part", As::writtenFile);
    const OpenedElsewhere unpacking(downloads_ / "archive/part", As::writtenFile);
    const OpenedElsewhere notes(downloads_ / "image.aria2", As::writtenFile);
    const OpenedElsewhere reader(downloads_ / "read/book.pdf", As::file);
    const OpenedElsewhere shell(downloads_ / "read", As::workingFolder);
    scan();
    EXPECT_THAT(this->notes(),
                UnorderedElementsAre(Pair("film.mkv.part", ItemNote::inUse), Pair("archive", ItemNote::inUse),
                                     Pair("image", ItemNote::inUse), Pair("quiet.part", ItemNote::unfinished),
                                     Pair("read", ItemNote::none)));
    const auto program = QString::fromStdString(files::programName(unpacking.process()));
    EXPECT_EQ(rows_.at("archive")->noteText(), program + QStringLiteral(" is running and uses it"));
    EXPECT_EQ(rows_.at("film.mkv.part")->noteText(),
              QStringLiteral("Unfinished; ") + program + QStringLiteral(" is writing to it"));
    EXPECT_TRUE(rows_.at("film.mkv.part")->isTickedByHandOnly());
}

}  // namespace brimvault::tests
