#include "ui/list/IconImage.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QDir>
#include <QImageReader>
#include <QPainter>
#include <QtEndian>
#include <fstream>

#include "support/HostileFiles.h"
#include "trial/SampleHome.h"
#include "trial/SampleIcon.h"
#include "trial/TemporaryFolder.h"
#include "ui/look/IconTheme.h"

using namespace brimvault;
using ui::IconImage;

namespace {

QImage filled(int width, int height, const QColor& colour) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

QByteArray saved(const QImage& image, const char* format) {
    QByteArray contents;
    QBuffer buffer(&contents);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format)) << format;
    return contents;
}

QByteArray png(const QImage& image) { return saved(image, "PNG"); }

QByteArray number32(quint32 value) {
    const quint32 bytes = qToBigEndian(value);
    return {reinterpret_cast<const char*>(&bytes), sizeof bytes};
}

quint32 checksum(const QByteArray& bytes) {
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum >> 1U ^ ((sum & 1U) != 0 ? 0xedb88320 : 0);
        }
    }
    return ~sum;
}

QByteArray chunk(const QByteArray& kind, const QByteArray& contents) {
    return number32(static_cast<quint32>(contents.size())) + kind + contents + number32(checksum(kind + contents));
}

// The picture with a chunk more, before those that hold it.
QByteArray with(const QByteArray& chunk, const QByteArray& picture) {
    constexpr qsizetype head = 8 + 12 + 13;
    return picture.left(head) + chunk + picture.mid(head);
}

// A file (ico) of one picture.
QByteArray onlyOne(const QByteArray& picture) {
    const quint32 length = qToLittleEndian(static_cast<quint32>(picture.size()));
    return QByteArray("\0\0\1\0\1\0\x40\x40\0\0\1\0\x20\0", 14) +
           QByteArray(reinterpret_cast<const char*>(&length), sizeof length) + QByteArray("\x16\0\0\0", 4) + picture;
}

// Of this process, in KiB.
long memory(const char* field) {
    std::ifstream status("/proc/self/status");
    for (std::string name; status >> name; status.ignore(1000, '\n')) {
        if (long value = 0; name == field && status >> value) {
            return value;
        }
    }
    return 0;
}

QByteArray element(const QByteArray& kind, const QByteArray& contents) {
    return kind + number32(static_cast<quint32>(contents.size() + 8)) + contents;
}

QByteArray sample() { return QByteArray::fromStdString(trial::SampleIcon::inColour({0x5B, 0x8D, 0xEF})); }

QSize sizeOf(const QByteArray& contents) { return IconImage::ofContents(contents, 40).size(); }

class IconImages : public testing::Test {
protected:
    void SetUp() override {
        IconImage::limitMemory();
        before_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }
    void TearDown() override { qInstallMessageHandler(before_); }

private:
    QtMessageHandler before_ = nullptr;  ///< what is broken is told at length
};

}  // namespace

TEST_F(IconImages, FitTheirPlaceWithTheirShapeKept) {
    EXPECT_EQ(sizeOf(png(filled(128, 128, Qt::red))), QSize(40, 40));
    EXPECT_EQ(sizeOf(png(filled(16, 8, Qt::red))), QSize(40, 20));
    EXPECT_EQ(sizeOf(png(filled(20, 2000, Qt::red))).height(), 40);
}

TEST_F(IconImages, OfSeveralSizesTheSmallestThatIsLargeEnoughServes) {
    ASSERT_TRUE(QImageReader::supportedImageFormats().contains("icns")) << "Qt's image formats are missing";
    const QByteArray file = element(
        "icns", element("ic10", png(filled(1024, 1024, Qt::red))) + element("icp4", png(filled(16, 16, Qt::blue))) +
                    element("ic07", png(filled(128, 128, Qt::green))) + element("ic08", "broken"));
    EXPECT_EQ(IconImage::ofContents(file, 40).pixelColor(20, 20), QColor(Qt::green));
    EXPECT_EQ(IconImage::ofContents(file, 16).pixelColor(8, 8), QColor(Qt::blue));
    EXPECT_EQ(IconImage::ofContents(file, 200).pixelColor(100, 100), QColor(Qt::red)) << "the broken one is passed";
}

TEST_F(IconImages, OfTheSampleHomeAreSquaresWithRoundCorners) {
    const QImage icon = IconImage::ofContents(sample(), 20);
    ASSERT_EQ(icon.size(), QSize(20, 20));
    EXPECT_EQ(icon.pixelColor(10, 10), QColor(0x5B, 0x8D, 0xEF));
    EXPECT_GT(icon.pixelColor(1, 10).alpha(), 200);
    EXPECT_LT(icon.pixelColor(0, 10).alpha(), 50);
    EXPECT_LT(icon.pixelColor(1, 1).alpha(), 64);
}

TEST_F(IconImages, AreNoneWhereTheContentsAreBrokenTooLargeOrNoIcon) {
    const QByteArray whole = png(filled(64, 64, Qt::red));
    const QByteArray drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><g/></svg>)";
    const QByteArray small = element("ic07", png(filled(4, 4, Qt::red)));
    EXPECT_FALSE(IconImage::ofContents(element("icns", small.repeated(200)), 20).isNull());
    for (const auto& contents :
         {element("icns", small.repeated(100'000)), QByteArray(), QByteArray("text"), whole.left(20), drawing,
          QByteArray("icns\xff\xff\xff\xff"), element("icns", element("ic07", "no picture")),
          png(filled(IconImage::maxSide + 1, 1, Qt::red)), png(filled(1, IconImage::maxSide + 1, Qt::red)),
          element("icns", element("ic07", png(filled(5000, 5000, Qt::red))))}) {
        EXPECT_TRUE(IconImage::ofContents(contents, 20).isNull()) << contents.left(40).toStdString();
    }
}

TEST_F(IconImages, OfEveryFormKeepTheirColours) {
    QImage drawn(32, 32, QImage::Format_ARGB32);
    drawn.fill(QColor(200, 100, 50));
    for (const char* format : {"PNG", "TIFF", "ICO", "BMP", "XPM"}) {
        const QImage icon = IconImage::ofContents(saved(drawn, format), 32);
        ASSERT_EQ(icon.size(), QSize(32, 32)) << format;
        EXPECT_EQ(icon.pixelColor(16, 16), QColor(200, 100, 50)) << format;
    }
    QImage indexed(32, 32, QImage::Format_Indexed8);
    indexed.setColorTable({qRgba(255, 0, 0, 255), qRgba(0, 255, 0, 0)});
    indexed.fill(1);
    indexed.setPixel(16, 16, 0);
    for (const auto& contents : {png(indexed), onlyOne(png(indexed)), element("icns", element("ic05", png(indexed)))}) {
        const QImage icon = IconImage::ofContents(contents, 32);
        ASSERT_EQ(icon.size(), QSize(32, 32));
        EXPECT_EQ(icon.pixelColor(16, 16), QColor(Qt::red));
        EXPECT_EQ(icon.pixelColor(2, 2).alpha(), 0);
    }
}

TEST_F(IconImages, TakeLittleMemoryHoweverMuchIsPackedBesideThem) {
    constexpr qsizetype unpacked = 7'000'000;
    constexpr qsizetype lengthBefore = 4;  // Qt's own, before the packed text
    const QByteArray text =
        chunk("zTXt", QByteArray("x\0\0", 3) + qCompress(QByteArray(unpacked, 'x'), 9).mid(lengthBefore));
    const QByteArray profile =
        chunk("iCCP", QByteArray("x\0\0", 3) + qCompress(QByteArray(unpacked, 'x'), 9).mid(lengthBefore));
    const QByteArray hostile = with(text.repeated(100) + profile, png(filled(64, 64, Qt::red)));
    ASSERT_LT(hostile.size(), ui::IconFile::maxBytes);
    for (const auto& contents : {hostile, element("icns", element("ic07", hostile)), onlyOne(hostile)}) {
        std::ofstream("/proc/self/clear_refs") << "5" << std::flush;  // the most so far is forgotten
        const long before = memory("VmRSS:");
        ASSERT_GT(before, 0);
        const QImage icon = IconImage::ofContents(contents, 20);
        EXPECT_EQ(icon.pixelColor(10, 10), QColor(Qt::red)) << "the picture itself is good";
        constexpr long maxKiB = 32L * 1024;
        EXPECT_LT(memory("VmHWM:") - before, maxKiB);
    }
}

TEST_F(IconImages, AreNoPhotographsWhateverTheyArePackedIn) {
    const QByteArray photograph = saved(filled(64, 64, Qt::red), "JPG");
    QByteArray tiff = saved(filled(64, 64, Qt::red), "TIFF");
    ASSERT_FALSE(IconImage::ofContents(tiff, 20).isNull());
    QByteArray compression("\3\1\3\0\1\0\0\0", 8);  // the field, up to its value
    ASSERT_GT(tiff.indexOf(compression), 0);
    tiff[tiff.indexOf(compression) + compression.size()] = 7;  // as a photograph is
    for (const auto& contents : {photograph, element("icns", element("ic07", photograph)), onlyOne(photograph), tiff}) {
        EXPECT_TRUE(ui::IconFile::pictures(contents).empty()) << "no decoder sees it";
        EXPECT_TRUE(IconImage::ofContents(contents, 20).isNull()) << contents.left(40).toStdString();
    }
}

TEST_F(IconImages, OfTheDesktopAreFilesThatNeedNothingElse) {
    const trial::TemporaryFolder folder;
    const auto icon = [&](const std::string& drawing) {
        trial::writeFile(folder / "icon.svg", drawing);
        return IconImage::ofDesktopFile(QString::fromStdString(folder / "icon.svg"), 20);
    };
    const std::string start =
        R"(<?xml version="1.0"?><svg xmlns="http://www.w3.org/2000/svg" xmlns:l="http://www.w3.org/1999/xlink" width="9" height="9">)";
    const std::string square = R"(<rect id="a" width="9" height="9" fill="red"/>)";
    EXPECT_EQ(icon(start + square + "</svg>").pixelColor(10, 10), QColor(Qt::red));
    EXPECT_FALSE(icon(start + square + R"(<use l:href="#a"/></svg>)").isNull());
    std::string repeated = start + "<g id=\"g0\">" + square + "</g>";
    for (int number = 1; number < 30; ++number) {
        const std::string use = "<use l:href=\"#g" + std::to_string(number - 1) + "\"/>";
        repeated += "<g id=\"g" + std::to_string(number) + "\">" + use + use + "</g>";
    }
    trial::writeFile(folder / "other.png", png(filled(9, 9, Qt::red)).toStdString());
    for (const auto& drawing : {start + R"(<image width="9" height="9" l:href="other.png"/></svg>)",
                                repeated + "</svg>", "<!DOCTYPE svg [<!ENTITY a \"b\">]>" + start + square + "</svg>",
                                saved(filled(9, 9, Qt::red), "JPG").toStdString(), std::string()}) {
        EXPECT_TRUE(icon(drawing).isNull()) << drawing.substr(0, 300);
    }
    ASSERT_EQ(::mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    EXPECT_TRUE(IconImage::ofDesktopFile(QString::fromStdString(folder / "pipe.png"), 20).isNull());
}

TEST_F(IconImages, SurviveEveryDamage) {
    testing::internal::CaptureStderr();  // the decoders complain
    const QImage drawn = filled(16, 16, Qt::red);
    for (const QByteArray& whole :
         {sample(), png(drawn), saved(drawn, "TIFF"), saved(drawn, "ICO"), onlyOne(png(drawn)), saved(drawn, "BMP"),
          element("icns", element("ic07", png(drawn)))}) {
        ASSERT_EQ(sizeOf(whole), QSize(40, 40));
        for (qsizetype place = 0; place < whole.size(); place += 1 + place / 100) {
            for (const char letter : {'\0', '\x7f', '\xff'}) {
                QByteArray damaged = whole;
                damaged[place] = letter;
                const QSize size = sizeOf(damaged);
                EXPECT_TRUE(size.isEmpty() || std::max(size.width(), size.height()) == 40) << place;
                EXPECT_LE(sizeOf(whole.left(place)).width(), 40);
            }
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST(IconThemes, HaveTheFileThatServesBest) {
    const trial::TemporaryFolder folder;
    const auto theme = [&](const char* name, const std::string& inherits, const std::string& folders) {
        trial::writeFile(folder / name / "index.theme",
                         "[Icon Theme]\nName=x\nInherits=" + inherits + "\nDirectories=x\n" + folders);
    };
    theme("Mine", "Other,Mine",
          "[16x16/mimetypes]\nSize=16\nContext=MimeTypes\nType=Fixed\n"
          "[32/mime]\nSize=32\nContext=MimeTypes\n[16x16@2/mimetypes]\nSize=16\nScale=2\nContext=MimeTypes\n"
          "[apps]\nSize=20\nContext=Applications\n");
    theme("Other", "Mine", "[any]\nSize=48\nMinSize=8\nMaxSize=512\nType=Scalable\nContext=MimeTypes\n");
    theme("hicolor", "", "[64/mimetypes]\nSize=64\nContext=MimeTypes\n");
    for (const char* file :
         {"Mine/16x16/mimetypes/zip.png", "Mine/32/mime/zip.png", "Mine/32/mime/zip.svg", "Mine/apps/program.png",
          "Other/any/text.svg", "hicolor/64/mimetypes/zip.png", "hicolor/64/mimetypes/last.png"}) {
        trial::writeFile(folder / file, "picture");
    }
    const QString place = QString::fromStdString(folder.path());
    ui::IconTheme icons(QStringLiteral("Mine"), {QStringLiteral("/no such folder"), place});
    const auto found = [&](const QStringList& names, int pixels) {
        return QDir(place).relativeFilePath(icons.fileOf(names, pixels)).toStdString();
    };
    EXPECT_EQ(found({QStringLiteral("zip")}, 16), "Mine/16x16/mimetypes/zip.png");
    EXPECT_EQ(found({QStringLiteral("zip")}, 20), "Mine/32/mime/zip.png");
    EXPECT_EQ(found({QStringLiteral("zip")}, 99), "Mine/32/mime/zip.png") << "the theme before the size";
    EXPECT_EQ(found({QStringLiteral("rar"), QString(), QStringLiteral("text")}, 20), "Other/any/text.svg");
    EXPECT_EQ(found({QStringLiteral("last"), QStringLiteral("zip")}, 20), "hicolor/64/mimetypes/last.png");
    EXPECT_TRUE(icons.fileOf({QStringLiteral("program"), QStringLiteral("")}, 20).isEmpty()) << "no icon of a type";
    EXPECT_TRUE(ui::IconTheme(QString(), {place}).fileOf({QStringLiteral("zip")}, 20).isEmpty());
    tests::forEachHostileKind(folder / "Odd/index.theme", [&](const std::string& kind) {
        ui::IconTheme odd(QStringLiteral("Odd"), {place});
        EXPECT_TRUE(odd.fileOf({QStringLiteral("last")}, 20).endsWith(QStringLiteral("mimetypes/last.png"))) << kind;
    });
    tests::forEachHostileKind(folder / "Mine/32/mime/odd.png", [&](const std::string& kind) {
        EXPECT_EQ(icons.fileOf({QStringLiteral("odd")}, 20).isEmpty(), kind != "huge file") << kind;
    });
}
